import QtQuick
import QtQuick.Templates as T

/// A symbol to click, in a small square.
T.Button {
    id: root

    property string symbol
    /// What it does: its tool tip and its name.
    property string help
    property real size: 15
    property color tint: hovered ? Theme.ink : Theme.secondary
    /// Turns the symbol upside down.
    property bool flipped: false

    implicitWidth: Theme.scaled(size) + leftPadding + rightPadding
    implicitHeight: Theme.scaled(size) + topPadding + bottomPadding
    padding: 6
    opacity: !enabled ? 0.4 : down ? 0.7 : 1
    Accessible.name: help
    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()

    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            symbol: root.symbol
            size: root.size
            color: root.tint
            rotation: root.flipped ? 180 : 0

            Behavior on rotation {
                NumberAnimation {
                    duration: Theme.duration(180)
                    easing.type: Easing.OutBack
                }
            }
        }
    }
    background: Rectangle {
        radius: 7
        color: Theme.ink
        opacity: root.hovered && root.enabled ? 0.06 : 0

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
    Help {
        text: root.help
        wanted: root.hovered
    }
}
