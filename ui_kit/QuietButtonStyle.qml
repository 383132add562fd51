import QtQuick

/// Only a text, until the pointer comes.
TextButton {
    id: root

    /// How far around it a click counts, in pixels.
    property real reach: 0

    fill: "transparent"
    ink: hovered ? Theme.ink : Theme.secondary
    radius: 6
    horizontalPadding: 6
    verticalPadding: 3
    containmentMask: Item {
        parent: root
        anchors.fill: parent
        anchors.margins: -root.reach
    }
}
