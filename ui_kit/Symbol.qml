import QtQuick

/// A symbol of Symbols.h in one colour.
Image {
    property string symbol
    property real size: 16
    property color color: Theme.ink

    readonly property real side: Theme.scaled(size)

    source: symbol ? `image://symbol/${symbol}/${color.toString().slice(1)}` : ""
    sourceSize {
        width: side
        height: side
    }
    width: side
    height: side
    Accessible.ignored: true
}
