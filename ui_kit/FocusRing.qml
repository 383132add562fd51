import QtQuick

/// Around the control that the keyboard is at; a child of it.
Rectangle {
    property real around: 8

    anchors.fill: parent
    anchors.margins: -3
    radius: around + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.lavenderInk
}
