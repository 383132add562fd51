import QtQuick

/// A line between two rows.
Rectangle {
    implicitHeight: 1
    color: Theme.border
}
