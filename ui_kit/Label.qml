import QtQuick

/// A text to read. Every text of the interface is one: see the text format.
Text {
    property real size: 13
    property int weight: Font.Normal

    font: Theme.text(size, weight)
    color: Theme.ink
    // A name of a file or a text from the network may contain tags, which must not be read as markup.
    textFormat: Text.PlainText
    // Also for a name that is written from right to left; LayoutMirroring turns it around.
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
