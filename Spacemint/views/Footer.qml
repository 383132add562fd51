import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The running scan, or the last scan and a button for the next one.
RowLayout {
    id: root

    required property Ui ui

    spacing: 12
    // "Stop" and "Scan now" have the same height, so nothing moves when one replaces the other.
    height: implicitHeight

    ScanProgressView {
        Layout.fillWidth: true
        Layout.leftMargin: 20
        Layout.topMargin: 10
        Layout.bottomMargin: 10
        visible: root.ui.scan.scanning
        ui: root.ui
        compact: true
    }
    Label {
        Layout.fillWidth: true
        Layout.leftMargin: 20
        Layout.topMargin: 10
        Layout.bottomMargin: 10
        visible: !root.ui.scan.scanning
        text: root.ui.scan.scanned
        size: 11.5
        color: Theme.secondary
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        maximumLineCount: 2
        elide: Text.ElideRight
        Accessible.description: root.ui.scan.scannedHelp

        HoverHandler {
            id: pointer
        }
        Help {
            text: root.ui.scan.scannedHelp
            wanted: pointer.hovered && text
        }
    }
    ScanButton {
        Layout.rightMargin: 20
        Layout.topMargin: 10
        Layout.bottomMargin: 10
        ui: root.ui
    }
}
