import QtQuick

/// A small coloured capsule.
TextButton {
    size: 11
    fill: Theme.lavender
    ink: Theme.lavenderInk
    radius: height / 2
    horizontalPadding: 10
    verticalPadding: 4
}
