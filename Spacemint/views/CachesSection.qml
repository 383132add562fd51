import QtQuick
import QtQuick.Layouts
import Spacemint.Views

/// Caches and build files, which tools make again when they need them.
ColumnLayout {
    id: root

    required property Ui ui

    readonly property ItemRows caches: ui.developer.caches

    spacing: 10

    SectionHeader {
        id: header

        title: Words.caches
    }
    StatusCard {
        text: root.caches.text
    }
    SectionRows {
        rows: root.caches
        name: header.title
    }
}
