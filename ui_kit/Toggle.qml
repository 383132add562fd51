import QtQuick
import QtQuick.Templates as T

/// A switch. Its text, if any, is at the other end of the row.
T.Switch {
    id: root

    property real size: 13

    function flip() {
        toggle();
        toggled();
    }

    hoverEnabled: true
    implicitWidth: indicator.implicitWidth + (text ? implicitContentWidth + spacing : 0)
    implicitHeight: Math.max(indicator.implicitHeight, implicitContentHeight)
    spacing: 12
    font: Theme.text(size)
    opacity: Theme.strength(root)
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Keys.forwardTo: [keys]

    contentItem: Label {
        readonly property real gap: root.indicator.width + root.spacing

        leftPadding: root.mirrored ? gap : 0
        rightPadding: root.mirrored ? 0 : gap
        text: root.text
        font: root.font
        color: Theme.ink
        wrapMode: Text.Wrap
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    indicator: Rectangle {
        x: root.mirrored ? 0 : root.width - width
        y: (root.height - height) / 2
        implicitWidth: Theme.scaled(34)
        implicitHeight: Theme.scaled(20)
        radius: height / 2
        color: root.checked ? Theme.teal : Theme.secondary

        Rectangle {
            readonly property real gap: 2

            x: gap + root.visualPosition * (parent.width - width - 2 * gap)
            y: gap
            width: height
            height: parent.height - 2 * gap
            radius: height / 2
            color: Theme.canvas

            Behavior on x {
                enabled: !root.down

                NumberAnimation {
                    duration: Theme.duration(180)
                    easing.type: Easing.OutCubic
                }
            }
        }
        Behavior on color {
            ColorAnimation {
                duration: Theme.duration(120)
            }
        }
        FocusRing {
            visible: root.visualFocus
            around: parent.radius
        }
    }

    ButtonKeys {
        id: keys

        onChosen: root.flip()
    }
}
