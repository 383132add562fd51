import QtQuick
import QtQuick.Layouts
import Spacemint.Views

/// The models that Ollama keeps.
ColumnLayout {
    id: root

    required property Ui ui

    readonly property ItemRows ollama: ui.developer.ollama

    visible: ollama.isShown
    spacing: 10

    SectionHeader {
        id: header

        title: Words.ollama
    }
    StatusCard {
        text: root.ollama.text
        busy: root.ollama.isWaiting
    }
    SectionRows {
        rows: root.ollama
        name: header.title
    }
}
