pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

/// One of a few, side by side. `model` is a list of strings.
// Of the templates, a GroupBox is the one whose role screen readers are told.
T.GroupBox {
    id: root

    property var model: []
    property int currentIndex: 0
    property real size: 12

    /// The person chose another.
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
    opacity: enabled ? 1 : 0.4
    focusPolicy: Qt.StrongFocus
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
                    easing.type: Easing.OutBack
                    easing.overshoot: 0.8
                }
            }
        }
        Row {
            id: row

            Repeater {
                id: segments

                model: root.model

                T.AbstractButton {
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
                    Accessible.role: Accessible.RadioButton
                    Accessible.name: text
                    Accessible.checkable: true
                    Accessible.checked: index === root.currentIndex
                    onClicked: root.choose(index)

                    contentItem: Text {
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
