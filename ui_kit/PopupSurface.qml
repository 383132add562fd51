pragma ComponentBehavior: Bound

import QtQuick

/// What stands over the rest.
Rectangle {
    id: root

    radius: 9
    color: Theme.card
    border.width: 1
    border.color: Theme.border

    // A soft shadow: rectangles that lie over each other, the largest below.
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
