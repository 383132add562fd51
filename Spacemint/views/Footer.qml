import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The scan that runs, or the last one and a button for the next.
RowLayout {
    id: root

    required property Ui ui

    spacing: 12
    // The button that comes and the one that goes are of one height, so nothing jumps.
    height: implicitHeight

    ScanProgressView {
        Layout.fillWidth: true
        Layout.leftMargin: 20
        visible: root.ui.scan.scanning
        ui: root.ui
        compact: true
    }
    Label {
        Layout.fillWidth: true
        Layout.leftMargin: 20
        visible: !root.ui.scan.scanning
        text: root.ui.scan.scanned
        size: 11.5
        color: Theme.secondary
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        maximumLineCount: 2
        elide: Text.ElideRight

        HoverHandler {
            id: pointer
        }
        Help {
            text: root.ui.scan.scannedHelp
            wanted: pointer.hovered && text
        }
    }
    SecondaryButtonStyle {
        Layout.rightMargin: 20
        Layout.topMargin: 10
        Layout.bottomMargin: 10
        text: root.ui.scan.scanning ? "Stop" : "Scan now"
        symbol: root.ui.scan.scanning ? "" : "arrow.clockwise"
        onClicked: root.ui.scan.scanning ? root.ui.scan.stop() : root.ui.scan.scan()
    }
    Timer {
        interval: 30000
        repeat: true
        running: Theme.isSeen(root) && !root.ui.scan.scanning
        triggeredOnStart: true
        onTriggered: root.ui.scan.refresh()
    }
}
