import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

/// A whole row that opens something when it is clicked; `text` is its name, its children are what it shows.
T.AbstractButton {
    id: root

    /// Whether what it opens is open below it.
    property bool expanded: false
    property string symbol: "chevron.right"
    default property alias content: row.data

    Layout.fillWidth: true
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 8
    verticalPadding: 6
    opacity: enabled ? 1 : 0.4
    Accessible.role: Accessible.Button
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    contentItem: RowLayout {
        spacing: 8

        RowLayout {
            id: row

            Layout.fillWidth: true
            spacing: 8
        }
        Symbol {
            symbol: root.symbol
            size: 12
            color: Theme.tertiary
            rotation: root.expanded ? 90 : 0

            Behavior on rotation {
                NumberAnimation {
                    duration: Theme.duration(160)
                    easing.type: Easing.OutBack
                }
            }
        }
    }
    background: Rectangle {
        radius: 7
        color: Theme.ink
        opacity: root.down ? 0.08 : root.hovered && root.enabled ? 0.04 : 0

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.duration(100)
            }
        }
    }

    FocusRing {
        visible: root.visualFocus
        around: 7
        anchors.margins: 0
    }
}
