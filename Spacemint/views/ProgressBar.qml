import QtQuick
import QtQuick.Templates as T
import Spacemint.UiKit

/// A progress bar. While the progress is unknown a piece of it moves, or stands in the middle with reduced motion.
T.ProgressBar {
    id: root

    /// From 0 to 1; negative while it is unknown.
    property real fraction: -1
    /// The progress in words.
    property string text

    value: Math.max(0, fraction)
    indeterminate: fraction < 0
    implicitWidth: 120
    implicitHeight: 6
    focusPolicy: Qt.NoFocus
    Accessible.name: text

    // Qt has no values of progress bars for screen readers: they get a message at each tenth.
    Item {
        id: message

        readonly property string text: root.text
        property int said: 0

        visible: false
        Accessible.role: Accessible.AlertMessage
        onTextChanged: {
            const tenth = Math.floor(Math.max(0, root.fraction) * 10);
            if (tenth === said)
                return;
            said = tenth;
            // A message that appears is read out.
            visible = false;
            Accessible.name = text;
            visible = tenth > 0;
        }
    }

    contentItem: Item {
        clip: true

        Rectangle {
            id: filled

            readonly property real piece: 0.3
            readonly property bool moves: root.indeterminate && Theme.isSeen(root) && !Theme.reducedMotion

            property real place

            x: root.indeterminate ? (parent.width * (1 + piece)) * (moves ? place : 0.5) - width : root.mirrored ? parent.width - width : 0
            width: parent.width * (root.indeterminate ? piece : root.position)
            height: parent.height
            radius: height / 2
            color: Theme.ink

            Behavior on width {
                enabled: !root.indeterminate

                NumberAnimation {
                    duration: Theme.duration(300)
                    easing.type: Easing.OutCubic
                }
            }
            NumberAnimation on place {
                running: filled.moves
                from: 0
                to: 1
                duration: 1400
                loops: Animation.Infinite
                easing.type: Easing.InOutSine
            }
        }
    }
    background: Rectangle {
        radius: height / 2
        color: Theme.track
    }
}
