pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

/// A few choices side by side, of which one is chosen. `model` is a list of strings.
// Of the templates only GroupBox has the role of a group for screen readers.
T.GroupBox {
    id: root

    property var model: []
    property int currentIndex: 0
    property real size: 12

    /// The person chose another segment.
    signal activated(int index)

    function choose(index: int) {
        if (index < 0 || index >= model.length || index === currentIndex)
            return;
        currentIndex = index;
        activated(index);
    }

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 2
    font: Theme.text(size, Font.Medium)
    opacity: Theme.strength(root)
    focusPolicy: Qt.StrongFocus
    // This has the focus, and not the segment.
    Accessible.description: model[currentIndex] ?? ""
    Keys.onLeftPressed: choose(currentIndex - 1)
    Keys.onRightPressed: choose(currentIndex + 1)

    contentItem: Item {
        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight

        Rectangle {
            readonly property Item at: segments.count > root.currentIndex && root.currentIndex >= 0 ? segments.itemAt(root.currentIndex) : null

            visible: at
            x: at ? at.x : 0
            width: at ? at.width : 0
            height: parent.height
            radius: 6
            color: Theme.isDark ? Theme.button : Theme.card
            border.width: 1
            border.color: Theme.border

            Behavior on x {
                NumberAnimation {
                    duration: Theme.duration(180)
                    easing.type: Easing.OutCubic
                }
            }
        }
        Row {
            id: row

            Repeater {
                id: segments

                model: root.model

                // Only this template has the role of a radio button: Qt overrides the role that a file sets.
                T.RadioButton {
                    id: segment

                    required property int index
                    required property string modelData

                    hoverEnabled: true
                    implicitWidth: caption.implicitWidth + leftPadding + rightPadding
                    implicitHeight: caption.implicitHeight + topPadding + bottomPadding
                    horizontalPadding: 12
                    verticalPadding: 5
                    text: modelData
                    focusPolicy: Qt.NoFocus
                    checked: index === root.currentIndex
                    Accessible.name: text
                    Accessible.checkable: true
                    Accessible.checked: checked
                    onClicked: root.choose(index)

                    contentItem: Label {
                        id: caption

                        text: segment.text
                        font: root.font
                        color: segment.index === root.currentIndex || segment.hovered ? Theme.ink : Theme.secondary
                        horizontalAlignment: Text.AlignHCenter
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
    background: Rectangle {
        radius: 8
        color: Theme.well
        border.width: 1
        border.color: Theme.border

        FocusRing {
            visible: root.visualFocus
            around: parent.radius
        }
    }
}
