import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// Starts a scan, or stops the running one.
SecondaryButtonStyle {
    id: root

    required property Ui ui

    text: ui.scan.scanning ? Words.stop : Words.scanNow
    symbol: ui.scan.scanning ? "" : "arrow.clockwise"
    onClicked: ui.scan.scanning ? ui.scan.stop() : ui.scan.scan()

    Timer {
        interval: 30000
        repeat: true
        running: Theme.isSeen(root) && !root.ui.scan.scanning
        triggeredOnStart: true
        onTriggered: root.ui.scan.refresh()
    }
}
