import QtQuick
import QtQuick.Templates as T

/// A bar that is filled from 0 to 1.
T.ProgressBar {
    id: root

    property real fraction: 0
    property color color: Theme.ink
    /// Whether a change of the fraction is a movement.
    property bool moves: false

    value: fraction
    implicitWidth: 120
    implicitHeight: 6
    Accessible.role: Accessible.ProgressBar
    focusPolicy: Qt.NoFocus

    contentItem: Item {
        Rectangle {
            anchors.left: parent.left
            width: parent.width * root.position
            height: parent.height
            radius: height / 2
            color: root.color

            Behavior on width {
                enabled: root.moves

                NumberAnimation {
                    duration: Theme.duration(300)
                    easing.type: Easing.OutCubic
                }
            }
        }
    }
    background: Rectangle {
        radius: height / 2
        color: Theme.track
    }
}
