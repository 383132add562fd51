pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Spacemint.UiKit

/// Which of the pages is shown.
T.Control {
    id: root

    property list<string> titles
    property int currentIndex: 0

    signal activated(int index)

    function show(index: int) {
        if (index >= 0 && index < titles.length)
            activated(index);
    }

    implicitHeight: implicitContentHeight
    implicitWidth: implicitContentWidth
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.PageTabList
    // Controls take back their own role when somebody comes who reads it.
    Accessible.onRoleChanged: Accessible.role = Accessible.PageTabList
    Accessible.name: "Pages"
    Keys.onLeftPressed: show(currentIndex - 1)
    Keys.onRightPressed: show(currentIndex + 1)

    TextMetrics {
        id: words

        font: Theme.text(12.5, Font.DemiBold)
        text: root.titles.join("")
    }

    // Large letters take from the space around them, and then another line.
    contentItem: Flow {
        id: row

        readonly property real room: (width - words.advanceWidth - 3 * spacing - 4) / 8

        spacing: 4

        Repeater {
            model: root.titles

            T.AbstractButton {
                id: button

                required property int index
                required property string modelData
                readonly property bool isSelected: index === root.currentIndex

                text: modelData
                implicitWidth: implicitContentWidth + leftPadding + rightPadding
                implicitHeight: implicitContentHeight + topPadding + bottomPadding
                horizontalPadding: Math.max(4, Math.min(11, row.room))
                verticalPadding: 6
                focusPolicy: Qt.NoFocus
                Accessible.role: Accessible.PageTab
                Accessible.onRoleChanged: Accessible.role = Accessible.PageTab
                Accessible.name: text
                Accessible.selected: isSelected
                onClicked: root.show(index)

                contentItem: Text {
                    text: button.text
                    font: words.font
                    color: button.isSelected || button.hovered ? Theme.ink : Theme.secondary
                    Accessible.ignored: true
                }
                background: Rectangle {
                    radius: 8
                    color: button.isSelected ? Theme.selected : button.hovered ? Theme.hover : "transparent"

                    FocusRing {
                        visible: root.visualFocus && button.isSelected
                        around: 8
                    }
                }
            }
        }
    }
}
