import QtQuick

/// Around the control that the keyboard is at; a child of it.
Rectangle {
    /// The corner radius of the control.
    property real around: 8
    /// How far outside of it the ring is.
    property real outside: 3

    anchors.fill: parent
    anchors.margins: -outside
    radius: around + outside
    color: "transparent"
    border.width: 2
    border.color: Theme.lavenderInk
}
