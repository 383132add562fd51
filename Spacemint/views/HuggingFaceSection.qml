import QtQuick
import QtQuick.Layouts
import Spacemint.Views

/// The models and datasets in the Hugging Face cache.
ColumnLayout {
    id: root

    required property Ui ui

    readonly property ItemRows huggingFace: ui.developer.huggingFace

    visible: huggingFace.isShown
    spacing: 10

    SectionHeader {
        id: header

        title: Words.huggingFace
    }
    SectionRows {
        rows: root.huggingFace
        name: header.title
    }
}
