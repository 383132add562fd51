import QtQuick
import QtQuick.Templates as T

/// A menu of MenuEntry items. popup() opens it.
T.Menu {
    id: root

    implicitWidth: Math.max(Theme.scaled(140), contentItem.childrenRect.width) + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 4
    margins: 8
    cascade: false

    contentItem: ListView {
        readonly property real widest: {
            let width = 0;
            for (let i = 0; i < root.count; ++i)
                width = Math.max(width, root.itemAt(i)?.implicitWidth ?? 0);
            return width;
        }

        implicitWidth: widest
        implicitHeight: contentHeight
        model: root.contentModel
        currentIndex: root.currentIndex
        interactive: false
    }
    background: PopupSurface {}
    delegate: MenuEntry {}
    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.duration(80)
        }
    }
}
