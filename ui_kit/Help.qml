import QtQuick
import QtQuick.Templates as T

/// The tool tip of a control; a child of the control.
T.ToolTip {
    id: root

    /// Whether the pointer or the keyboard is at the control.
    property bool wanted: false

    visible: wanted && text !== ""
    delay: 600
    // Above, where the pointer and the hand are not.
    y: -height - 6
    x: parent ? Math.round((parent.width - width) / 2) : 0
    margins: 6
    horizontalPadding: 8
    verticalPadding: 5
    implicitWidth: Math.min(Theme.scaled(280), implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent

    contentItem: Label {
        text: root.text
        size: 11
        color: Theme.canvas
        wrapMode: Text.Wrap
    }
    background: Rectangle {
        radius: 6
        color: Theme.ink
    }
    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.duration(100)
        }
    }
    exit: Transition {
        NumberAnimation {
            property: "opacity"
            to: 0
            duration: Theme.duration(80)
        }
    }
}
