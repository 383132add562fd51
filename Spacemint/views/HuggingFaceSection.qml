import QtQuick
import QtQuick.Layouts
import Spacemint.Views

/// What the Hugging Face tools have downloaded.
ColumnLayout {
    id: root

    required property Ui ui

    readonly property Section huggingFace: ui.developer.huggingFace

    visible: huggingFace.isShown
    spacing: 10

    SectionHeader {
        id: header

        title: "Cached Hugging Face models"
    }
    SectionRows {
        rows: root.huggingFace.rows
        name: header.title
    }
}
