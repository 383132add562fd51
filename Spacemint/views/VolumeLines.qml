pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The volumes besides the home folder's: the three fullest ones, the rest on demand.
ColumnLayout {
    id: root

    /// A list of VolumeLine.
    required property list<var> volumes
    /// Leaves out the total, for a narrow place.
    property bool isNarrow: false
    property bool showsAll: false
    readonly property int shown: 3

    /// The columns have one width in all lines, so that the bars have one length.
    function widest(column: string, least: real): real {
        let width = Theme.scaled(least);
        for (let i = 0; i < volumes.length; ++i)
            width = Math.max(width, metrics.advanceWidth(volumes[i][column]));
        return Math.ceil(width);
    }

    visible: volumes.length > 0
    spacing: 4

    FontMetrics {
        id: metrics

        font: Theme.text(12)
    }
    Repeater {
        model: root.showsAll ? root.volumes.length : Math.min(root.volumes.length, root.shown)

        ColumnLayout {
            id: line

            required property int index
            readonly property var volume: root.volumes[index]
            readonly property list<color> colors: [Theme.ink, Theme.warning, Theme.critical]
            readonly property color levelColor: colors[volume.level]
            readonly property int worstLevel: Math.max(volume.level, volume.filesLevel)
            // With large letters there is no room for the total.
            readonly property bool isLarge: root.isNarrow || Theme.scaled(100) > 140

            Layout.fillWidth: true
            spacing: 0
            Accessible.role: Accessible.StaticText
            Accessible.name: volume.spoken

            RowLayout {
                Layout.fillWidth: true
                Layout.minimumHeight: Theme.scaled(22)
                spacing: 8

                Symbol {
                    symbol: line.worstLevel > 0 ? "exclamationmark.triangle.fill" : "externaldrive"
                    size: 14
                    color: line.worstLevel > 0 ? line.colors[line.worstLevel] : Theme.secondary
                }
                Label {
                    Layout.preferredWidth: Math.min(root.widest("name", 52), root.width * 0.35)
                    text: line.volume.name
                    size: 12
                    elide: Text.ElideRight
                    Accessible.ignored: true
                }
                UsageBar {
                    Layout.fillWidth: true
                    implicitHeight: 4
                    fraction: line.volume.usedFraction
                    color: line.volume.level > 0 ? line.levelColor : Theme.secondary
                    Accessible.ignored: true
                }
                Label {
                    Layout.preferredWidth: root.widest("free", 58)
                    text: line.volume.free
                    size: 12
                    color: line.levelColor
                    horizontalAlignment: Text.AlignRight
                    Accessible.ignored: true
                }
                Label {
                    Layout.preferredWidth: root.widest("total", 62)
                    visible: !line.isLarge
                    text: line.volume.total
                    size: 12
                    color: Theme.secondary
                    horizontalAlignment: Text.AlignRight
                    Accessible.ignored: true
                }
            }
            Label {
                Layout.fillWidth: true
                Layout.leftMargin: Theme.scaled(14) + 8
                visible: line.volume.remark
                text: line.volume.remark
                size: 12
                color: line.colors[line.volume.filesLevel]
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
    }
    QuietButtonStyle {
        Layout.alignment: Qt.AlignHCenter
        visible: root.volumes.length > root.shown
        text: root.showsAll ? Words.showFewerDisks : Words.moreDisks(root.volumes.length - root.shown)
        onClicked: root.showsAll = !root.showsAll
    }
}
