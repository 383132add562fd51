import QtQuick

/// What stands over the rest.
Rectangle {
    radius: 9
    color: Theme.card
    border.width: 1
    border.color: Theme.border
}
