import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The tab with the largest files.
ColumnLayout {
    id: root

    required property Ui ui

    spacing: 0

    SectionHeader {
        Layout.margins: 20
        Layout.bottomMargin: 10
        title: Words.largestFiles
    }
    Placeholder {
        Layout.leftMargin: 20
        Layout.rightMargin: 20
        text: root.ui.files.largest.text
    }
    LongList {
        Layout.fillWidth: true
        Layout.fillHeight: true
        rows: root.ui.files.largest
        name: Words.largestFiles
        focus: true
    }
}
