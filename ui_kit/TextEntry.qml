import QtQuick
import QtQuick.Templates as T

/// A line of text that the person types.
T.TextField {
    id: root

    /// The name for screen readers.
    property string name
    /// Shown while there is no text.
    property string hint
    /// A symbol before the text; empty for none.
    property string symbol
    property real size: 12

    implicitWidth: 200
    implicitHeight: contentHeight + topPadding + bottomPadding
    leftPadding: symbol ? 16 + Theme.scaled(size) : 10
    rightPadding: 10
    topPadding: 6
    bottomPadding: 6
    font: Theme.text(size)
    color: Theme.ink
    selectionColor: Theme.lavenderInk
    selectedTextColor: Theme.card
    verticalAlignment: Text.AlignVCenter
    selectByMouse: true
    opacity: Theme.strength(root)
    Accessible.role: Accessible.EditableText
    Accessible.name: name
    Accessible.description: hint

    Label {
        x: root.leftPadding
        width: root.width - root.leftPadding - root.rightPadding
        height: root.height
        visible: !root.text && !root.preeditText
        text: root.hint
        font: root.font
        color: Theme.secondary
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    Symbol {
        x: root.mirrored ? root.width - width - 9 : 9
        anchors.verticalCenter: parent.verticalCenter
        visible: root.symbol
        symbol: root.symbol
        size: root.size
        color: Theme.secondary
    }
    background: Rectangle {
        radius: 7
        color: Theme.well
        border.width: 1
        border.color: root.activeFocus ? Theme.lavenderInk : Theme.border

        FocusRing {
            visible: root.activeFocus && Theme.isKeyboardInUse
            around: parent.radius
        }
    }
}
