import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

/// One entry of a MenuPopup.
T.MenuItem {
    id: root

    property string symbol
    property color ink: Theme.ink

    hoverEnabled: true
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 8
    verticalPadding: 6
    font: Theme.text(12)
    opacity: Theme.strength(root)
    Accessible.name: text

    contentItem: RowLayout {
        spacing: 8

        Symbol {
            visible: root.symbol
            symbol: root.symbol
            size: 14
            color: root.ink
        }
        Label {
            Layout.fillWidth: true
            text: root.text
            font: root.font
            color: root.ink
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: 6
        color: root.highlighted ? Theme.hover : "transparent"
    }
}
