import QtQuick
import QtQuick.Templates as T

/// The background of a button that shows one only under the pointer or with the keyboard focus.
Item {
    id: root

    required property T.AbstractButton over
    property real radius: 7

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: Theme.ink
        opacity: !root.over.enabled ? 0 : root.over.down ? 0.1 : root.over.hovered ? 0.06 : 0

        Behavior on opacity {
            NumberAnimation {
                duration: Theme.duration(100)
            }
        }
    }
    FocusRing {
        visible: root.over.visualFocus
        around: root.radius
        outside: 0
    }
}
