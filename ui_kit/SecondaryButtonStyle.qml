import QtQuick

/// What can be done as well.
TextButton {
    radius: 7
    horizontalPadding: 11
    verticalPadding: 6
}
