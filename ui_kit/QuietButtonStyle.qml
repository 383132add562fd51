import QtQuick

/// A button that looks like a text until the pointer is on it.
TextButton {
    id: root

    /// A click up to this many pixels outside of the button counts.
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
