import QtQuick

/// A secondary button.
TextButton {
    radius: 7
    horizontalPadding: 11
    verticalPadding: 6
}
