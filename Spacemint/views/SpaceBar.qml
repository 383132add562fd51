import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// How full the disk is, and where the warning begins.
UsageBar {
    id: root

    required property Ui ui

    fraction: ui.summary.usedFraction
    color: [Theme.ink, Theme.warning, Theme.critical][ui.summary.level]
    Accessible.name: ui.summary.spoken
    Accessible.description: ui.summary.tickHelp

    // A warning level at or over the total has no place on the bar.
    Rectangle {
        x: (root.mirrored ? 1 - root.ui.summary.tickFraction : root.ui.summary.tickFraction) * root.width - 1
        y: -3
        width: 2
        height: root.height + 6
        visible: root.ui.summary.tickFraction > 0
        radius: 1
        color: Theme.secondary

        HoverHandler {
            id: pointer

            margin: 6
        }
        Help {
            text: root.ui.summary.tickHelp
            wanted: pointer.hovered
        }
    }
}
