import QtQuick
import QtQuick.Layouts
import Spacemint.Views

/// Caches and build files that are made again when they are needed.
ColumnLayout {
    id: root

    required property Ui ui

    readonly property Section caches: ui.developer.caches

    spacing: 10

    SectionHeader {
        id: header

        title: "Leftover caches and build files"
    }
    StatusCard {
        text: root.caches.text
    }
    SectionRows {
        rows: root.caches.rows
        name: header.title
        wrapsSubtitles: true
    }
}
