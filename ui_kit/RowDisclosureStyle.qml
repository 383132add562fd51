import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

/// A whole row that opens something when it is clicked; `text` is its name, its children are what it shows. What
/// shows the pointer reaches a little beyond it, so that the texts of a column stand under each other.
T.AbstractButton {
    id: root

    /// Whether what it opens is open below it.
    property bool expanded: false
    property string symbol: "chevron.right"
    default property alias content: row.data

    Layout.fillWidth: true
    hoverEnabled: true
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    verticalPadding: 6
    leftInset: -8
    rightInset: -8
    opacity: enabled ? 1 : 0.4
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.forwardTo: [keys]

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
    background: HoverSurface {
        over: root
    }

    ButtonKeys {
        id: keys

        onChosen: root.clicked()
    }
}
