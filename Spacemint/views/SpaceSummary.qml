import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// How much is free, of how much, and whether that is little.
ColumnLayout {
    id: root

    required property Ui ui
    readonly property color levelColor: [Theme.ink, Theme.warning, Theme.critical][ui.summary.level]

    spacing: 10

    Item {
        Layout.fillWidth: true
        implicitHeight: Math.max(free.implicitHeight, total.implicitHeight)

        Label {
            id: free

            text: root.ui.summary.free
            font: Theme.display(44)
            color: root.levelColor
        }
        Label {
            anchors.left: free.right
            anchors.baseline: free.baseline
            text: " free"
            font: Theme.display(20)
            color: root.levelColor
        }
        Label {
            id: total

            anchors.right: parent.right
            anchors.baseline: free.baseline
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
        Accessible.name: root.ui.summary.free + " free"

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
    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: 2
        visible: root.ui.summary.warning
        implicitHeight: warning.implicitHeight + 20
        radius: 10
        color: Theme.warningFill
        border.width: 1
        border.color: Theme.warningBorder

        RowLayout {
            id: warning

            anchors.fill: parent
            anchors.margins: 10
            spacing: 9

            Symbol {
                Layout.alignment: Qt.AlignTop
                symbol: "exclamationmark.triangle.fill"
                color: root.levelColor
            }
            Label {
                Layout.fillWidth: true
                text: root.ui.summary.warning
                size: 12.5
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
            }
        }
    }
}
