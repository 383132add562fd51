import QtQuick
import QtQuick.Templates as T

/// A field of one line, for a search or another short text. Escape empties it.
T.TextField {
    id: root

    property real size: 12
    /// Said in place of a text, and the name for screen readers.
    property string hint
    /// The symbol before the text; empty for none.
    property string symbol: "magnifyingglass"
    /// With this width the hint is seen in full.
    readonly property real hintWidth: leftPadding + hintLabel.implicitWidth + rightPadding
    readonly property bool isMirrored: LayoutMirroring.enabled
    readonly property real roomForSymbol: symbol ? 10 + glass.width + 7 : 10

    implicitWidth: Theme.scaled(180)
    implicitHeight: Math.ceil(metrics.height) + topPadding + bottomPadding
    leftPadding: isMirrored ? 8 : roomForSymbol
    rightPadding: isMirrored ? roomForSymbol : 8
    topPadding: 6
    bottomPadding: 6
    font: Theme.text(size)
    color: Theme.ink
    selectionColor: Theme.selected
    selectedTextColor: Theme.ink
    selectByMouse: true
    verticalAlignment: TextInput.AlignVCenter
    // Only read out: the label below is what is seen.
    placeholderText: hint === Accessible.name ? "" : hint
    Accessible.role: Accessible.EditableText
    Accessible.name: hint
    Keys.onEscapePressed: event => {
        event.accepted = text !== "";
        clear();
    }

    FontMetrics {
        id: metrics

        font: root.font
    }
    Label {
        id: hintLabel

        x: root.leftPadding
        width: root.width - x - root.rightPadding
        anchors.verticalCenter: parent.verticalCenter
        visible: !root.text && !root.preeditText
        text: root.hint
        font: root.font
        color: Theme.secondary
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    Symbol {
        id: glass

        x: root.isMirrored ? root.width - width - 10 : 10
        anchors.verticalCenter: parent.verticalCenter
        visible: root.symbol
        symbol: root.symbol
        size: 14
        color: Theme.secondary
    }

    background: Rectangle {
        radius: 8
        color: Theme.well
        border.width: 1
        border.color: Theme.border

        FocusRing {
            visible: root.activeFocus
            around: parent.radius
            outside: 0
        }
    }
}
