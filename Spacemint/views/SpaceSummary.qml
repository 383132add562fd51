import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The free space, the total, and the warning.
ColumnLayout {
    id: root

    required property Ui ui

    spacing: 10

    Item {
        // With large letters the total is on a second line.
        readonly property bool isNarrow: figure.width + 12 + total.width > width

        Layout.fillWidth: true
        implicitHeight: figure.implicitHeight + (isNarrow ? total.implicitHeight : 0)

        FreeFigure {
            id: figure

            anchors.left: parent.left
            ui: root.ui
        }
        Label {
            id: total

            x: parent.isNarrow === LayoutMirroring.enabled ? parent.width - width : 0
            y: parent.isNarrow ? figure.height : figure.textBaseline - baselineOffset
            text: root.ui.summary.total
            size: 12
            color: Theme.secondary
        }
    }
    SpaceBar {
        Layout.fillWidth: true
        ui: root.ui
    }
    VolumeLines {
        Layout.fillWidth: true
        volumes: root.ui.summary.volumes
    }
    SpaceWarning {
        Layout.fillWidth: true
        Layout.topMargin: 2
        ui: root.ui
    }
}
