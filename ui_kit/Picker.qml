pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

/// A button that opens a list of choices. `model` is a list of strings.
T.ComboBox {
    id: root

    property real size: 12
    readonly property real roomForArrow: 11 + arrow.width + 6
    /// With this width the chosen text is seen in full.
    readonly property real leastWidth: label.implicitWidth + leftPadding + rightPadding

    hoverEnabled: true
    implicitWidth: Math.max(label.implicitWidth, widest.width) + leftPadding + rightPadding
    implicitHeight: label.implicitHeight + topPadding + bottomPadding
    leftPadding: mirrored ? roomForArrow : 11
    rightPadding: mirrored ? 11 : roomForArrow
    verticalPadding: 6
    font: Theme.text(size, Font.Medium)
    opacity: Theme.strength(root)
    Accessible.role: Accessible.ComboBox
    // A screen reader says the description after the name, and again when it changes. Qt has no text value here. The
    // list of choices does not have the focus while it is open.
    Accessible.description: popup.visible ? textAt(highlightedIndex) : displayText
    // The template chooses when Return is released, so the list also opens on the release.
    Keys.onReleased: event => {
        const opens = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        event.accepted = opens && !popup.visible;
        if (event.accepted)
            popup.open();
    }

    // Invisible. It measures the widest choice, so that the picker keeps its width.
    Column {
        id: widest

        visible: false

        Repeater {
            model: root.model

            Label {
                required property string modelData

                text: modelData
                font: root.font
            }
        }
    }

    contentItem: Label {
        id: label

        text: root.displayText
        font: root.font
        color: Theme.ink
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    indicator: Symbol {
        id: arrow

        x: root.mirrored ? 9 : root.width - width - 9
        y: (root.height - height) / 2
        symbol: "chevron.down"
        size: root.size
        color: Theme.secondary
    }
    background: Rectangle {
        radius: 7
        color: Theme.button

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: Theme.ink
            opacity: root.hovered && root.enabled ? 0.06 : 0
        }
        FocusRing {
            visible: root.visualFocus
            around: parent.radius
        }
    }
    delegate: T.ItemDelegate {
        id: entry

        required property int index
        required property string modelData

        hoverEnabled: true
        width: ListView.view.width
        implicitWidth: choice.implicitWidth + leftPadding + rightPadding
        implicitHeight: choice.implicitHeight + topPadding + bottomPadding
        leftPadding: mirrored ? 28 : 7
        rightPadding: mirrored ? 7 : 28
        verticalPadding: 6
        text: modelData
        Accessible.selectable: true
        Accessible.selected: root.currentIndex === index
        highlighted: root.highlightedIndex === index

        contentItem: Label {
            id: choice

            text: entry.text
            font: root.font
            color: Theme.ink
            elide: Text.ElideRight
            Accessible.ignored: true
        }
        background: Rectangle {
            radius: 6
            color: entry.highlighted ? Theme.hover : "transparent"

            Symbol {
                anchors.right: parent.right
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                visible: root.currentIndex === entry.index
                symbol: "checkmark"
                size: root.size
            }
        }
    }
    popup: T.Popup {
        // Pickers are at the end of a line: a list that is wider keeps the margin there.
        x: root.mirrored ? 0 : root.width - width
        y: root.height + 4
        width: Math.max(root.width, widest.width + 36 + leftPadding + rightPadding)
        implicitHeight: Math.min(contentItem.implicitHeight + topPadding + bottomPadding, Theme.scaled(280))
        padding: 4
        margins: 8
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: root.delegateModel
            currentIndex: root.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
        }
        background: PopupSurface {}
        enter: Transition {
            NumberAnimation {
                property: "opacity"
                from: 0
                to: 1
                duration: Theme.duration(100)
            }
        }
    }
}
