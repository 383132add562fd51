import QtQuick

/// A text to read.
Text {
    property real size: 13
    property int weight: Font.Normal

    font: Theme.text(size, weight)
    color: Theme.ink
    // Names of files come here, and no tag in one is ever taken for one.
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
