import QtQuick

/// The primary button of a view.
TextButton {
    size: 13
    weight: Font.DemiBold
    fill: Theme.ink
    ink: Theme.canvas
    radius: 9
    horizontalPadding: 16
    verticalPadding: 9
    pressedOpacity: 0.8
    hoverOpacity: 0.12
}
