import QtQuick

/// A text to read.
Text {
    property real size: 13
    property int weight: Font.Normal

    font: Theme.text(size, weight)
    color: Theme.ink
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
