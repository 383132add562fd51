pragma ComponentBehavior: Bound

import QtQuick

/// The surface of menus, lists and questions, with a shadow.
Rectangle {
    id: root

    radius: 9
    color: Theme.card
    border.width: 1
    border.color: Theme.border

    // A soft shadow of eight transparent rectangles, each larger than the one above it.
    Repeater {
        model: 8

        Rectangle {
            required property int index

            anchors.fill: parent
            anchors.margins: -index
            anchors.topMargin: 2 - index
            anchors.bottomMargin: -2 - index
            z: -1
            radius: root.radius + index
            color: Theme.shadow
            opacity: Theme.isDark ? 0.06 : 0.012
        }
    }
}
