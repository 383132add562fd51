import QtQuick
import QtQuick.Templates as T

/// A small square button with a symbol.
T.Button {
    id: root

    property string symbol
    /// The tool tip, and the name for screen readers.
    property string help
    property real size: 15
    property color tint: hovered ? Theme.ink : Theme.secondary
    /// Turns the symbol upside down.
    property bool flipped: false

    hoverEnabled: true
    implicitWidth: Theme.scaled(size) + leftPadding + rightPadding
    implicitHeight: Theme.scaled(size) + topPadding + bottomPadding
    padding: 6
    opacity: Theme.strength(root)
    Accessible.role: Accessible.Button
    Accessible.name: help
    Keys.forwardTo: [keys]

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
                    easing.type: Easing.OutCubic
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
    Help {
        text: root.help
        wanted: root.hovered || root.visualFocus
    }
}
