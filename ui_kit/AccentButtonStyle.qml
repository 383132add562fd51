import QtQuick

/// What is worth doing, among things that can be done.
TextButton {
    weight: Font.DemiBold
    fill: Theme.teal
    ink: Theme.canvas
    radius: 7
    horizontalPadding: 11
    verticalPadding: 6
    pressedOpacity: 0.8
    hoverOpacity: 0.12
}
