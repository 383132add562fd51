import QtQuick
import QtQuick.Templates as T

/// The tool tip of a control; a child of the control.
T.ToolTip {
    id: root

    /// Whether the pointer or the keyboard is at the control.
    property bool wanted: false

    /// Asked when it is shown.
    readonly property bool fitsAbove: !visible || !parent || parent.mapToItem(null, 0, 0).y >= height + 12

    visible: wanted && text !== ""
    delay: 600
    // Above, where the pointer and the hand are not; below what is at the top.
    y: fitsAbove ? -height - 6 : parent.height + 6
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
