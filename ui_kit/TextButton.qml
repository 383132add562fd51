import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

/// The base of all buttons with a text. Each style sets its size and its colours.
T.Button {
    id: root

    /// The name of the symbol before the text; empty for none.
    property string symbol
    /// Whether the button takes the full width in a layout.
    property bool fullWidth: false
    property color fill: Theme.button
    property color ink: Theme.ink
    property real size: 12
    property int weight: Font.Medium
    property real radius: 8
    property real pressedOpacity: 0.7
    /// The strength of the tint under the pointer.
    property real hoverOpacity: 0.06

    Layout.fillWidth: fullWidth
    hoverEnabled: true
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    font: Theme.text(size, weight)
    opacity: down ? pressedOpacity : Theme.strength(root)
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.forwardTo: [keys]

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight

        RowLayout {
            id: row

            anchors.centerIn: parent
            width: Math.min(implicitWidth, parent.width)
            spacing: 6

            Symbol {
                visible: root.symbol
                symbol: root.symbol
                size: root.size + 2
                color: root.ink
            }
            Label {
                Layout.fillWidth: true
                visible: root.text
                text: root.text
                font: root.font
                color: root.ink
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
    }
    background: Rectangle {
        color: root.fill
        radius: root.radius

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: root.ink
            opacity: root.hovered && root.enabled ? root.hoverOpacity : 0

            Behavior on opacity {
                NumberAnimation {
                    duration: Theme.duration(100)
                }
            }
        }
        FocusRing {
            visible: root.visualFocus
            around: root.radius
        }
    }

    ButtonKeys {
        id: keys

        onChosen: root.clicked()
    }
    Behavior on opacity {
        NumberAnimation {
            duration: Theme.duration(80)
        }
    }
}
