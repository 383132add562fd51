pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The side of a large window: the free space, the pages, and the scan.
Rectangle {
    id: root

    required property Ui ui
    /// Not beside a scan of another computer.
    readonly property bool showsSpace: ui.summary.known && ui.source.isOfHere

    implicitWidth: Theme.scaled(216)
    color: Theme.chrome

    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Theme.border
    }
    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        anchors.topMargin: 0
        anchors.bottomMargin: 20
        spacing: 8

        Wordmark {
            Layout.topMargin: 16
            Layout.bottomMargin: 12
        }
        FreeFigure {
            Layout.fillWidth: true
            // A long word for "free" makes the figure smaller.
            scale: Math.min(1, width / implicitWidth)
            transformOrigin: LayoutMirroring.enabled ? Item.BottomRight : Item.BottomLeft
            visible: root.showsSpace
            ui: root.ui
            size: 36
        }
        SpaceBar {
            Layout.fillWidth: true
            visible: root.showsSpace
            ui: root.ui
        }
        Label {
            visible: root.showsSpace
            text: root.ui.summary.total
            size: 11
            color: Theme.secondary
        }
        FreeSpaceLine {
            Layout.fillWidth: true
            Layout.topMargin: 4
            visible: root.showsSpace && history.isKnown
            history: root.ui.spaceHistory
            lineHeight: 40
        }
        VolumeLines {
            Layout.fillWidth: true
            Layout.topMargin: 4
            visible: root.showsSpace && volumes.length > 0
            volumes: root.ui.summary.volumes
            isNarrow: true
        }
        Column {
            Layout.fillWidth: true
            Layout.topMargin: 14
            Layout.leftMargin: -6
            Layout.rightMargin: -6
            spacing: 2
            Accessible.role: Accessible.PageTabList
            Accessible.name: Words.pages

            Repeater {
                model: root.ui.page.tabTitles

                PageButton {
                    required property int index
                    required property string modelData

                    width: parent.width
                    text: modelData
                    symbol: root.ui.page.tabSymbols[index] ?? ""
                    isSelected: root.ui.page.tabIndex === index
                    onChosen: root.ui.page.tabIndex = index
                }
            }
        }
        Item {
            Layout.fillHeight: true
        }
        ScanProgressView {
            Layout.fillWidth: true
            visible: root.ui.source.isOfHere && root.ui.scan.scanning
            ui: root.ui
            compact: true
        }
        Label {
            Layout.fillWidth: true
            visible: root.ui.source.isOfHere && !root.ui.scan.scanning
            text: root.ui.scan.scannedLines
            size: 11
            color: Theme.secondary
            wrapMode: Text.Wrap
        }
        ScanButton {
            Layout.fillWidth: true
            visible: root.ui.source.isOfHere
            ui: root.ui
        }
    }
}
