import QtQuick

/// The ring around the control with the keyboard focus; a child of the control.
Rectangle {
    /// The corner radius of the control.
    property real around: 8
    /// The distance between the control and the ring.
    property real outside: 3

    anchors.fill: parent
    anchors.margins: -outside
    radius: around + outside
    color: "transparent"
    border.width: 2
    border.color: Theme.lavenderInk
}
