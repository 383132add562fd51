import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The free space, the total, and the warning.
ColumnLayout {
    id: root

    required property Ui ui
    readonly property color levelColor: [Theme.ink, Theme.warning, Theme.critical][ui.summary.level]

    spacing: 10

    Item {
        // With large letters the total is on a second line.
        readonly property bool isNarrow: after.x + after.width + 12 + total.width > width

        Layout.fillWidth: true
        implicitHeight: free.implicitHeight + (isNarrow ? total.implicitHeight : 0)

        Label {
            id: before

            anchors.baseline: free.baseline
            text: root.ui.summary.beforeFree
            font: Theme.display(20, text)
            color: root.levelColor
        }
        Label {
            id: free

            anchors.left: before.right
            text: root.ui.summary.free
            font: Theme.display(44, text)
            color: root.levelColor
        }
        Label {
            id: after

            anchors.left: free.right
            anchors.baseline: free.baseline
            text: root.ui.summary.afterFree
            font: Theme.display(20, text)
            color: root.levelColor
        }
        Label {
            id: total

            x: parent.isNarrow ? 0 : parent.width - width
            y: parent.isNarrow ? free.height : free.baselineOffset - baselineOffset
            text: root.ui.summary.total
            size: 12
            color: Theme.secondary
        }
    }
    UsageBar {
        id: bar

        Layout.fillWidth: true
        fraction: root.ui.summary.usedFraction
        color: root.levelColor
        Accessible.name: root.ui.summary.spoken
        Accessible.description: root.ui.summary.tickHelp

        Rectangle {
            x: root.ui.summary.tickFraction * bar.width - 1
            y: -3
            width: 2
            height: 12
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
    VolumeLines {
        Layout.fillWidth: true
        volumes: root.ui.summary.volumes
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: 2
        visible: root.ui.summary.warning
        implicitHeight: warning.implicitHeight + 20
        radius: 10
        color: Theme.warningFill
        border.width: 1
        border.color: Theme.warningBorder

        Symbol {
            id: sign

            x: 10
            y: 10
            symbol: "exclamationmark.triangle.fill"
            color: root.levelColor
        }
        Label {
            id: warning

            anchors.top: parent.top
            anchors.left: sign.right
            anchors.right: parent.right
            anchors.margins: 10
            text: root.ui.summary.warning
            size: 12.5
            wrapMode: Text.Wrap
            Accessible.role: Accessible.AlertMessage
        }
    }
}
