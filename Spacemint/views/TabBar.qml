pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Spacemint.UiKit

/// Which of the pages is shown.
Item {
    id: root

    property var titles
    property int currentIndex: 0

    signal activated(int index)

    function show(index: int) {
        if (index >= 0 && index < titles.length)
            activated(index);
    }

    implicitHeight: row.implicitHeight
    implicitWidth: row.implicitWidth
    activeFocusOnTab: true
    Accessible.role: Accessible.PageTabList
    Accessible.name: "Pages"
    Keys.onLeftPressed: show(currentIndex - 1)
    Keys.onRightPressed: show(currentIndex + 1)

    TextMetrics {
        id: words

        font: Theme.text(12.5, Font.DemiBold)
        text: root.titles.join("")
    }

    // Large letters take from the space around them, and then another line.
    Flow {
        id: row

        readonly property real room: (width - words.advanceWidth - 3 * spacing - 4) / 8

        width: root.width
        spacing: 4

        Repeater {
            model: root.titles

            // Qt gives a control the role of its kind, so the role of a page stands around the button.
            Item {
                id: page

                required property int index
                required property string modelData
                readonly property bool isSelected: index === root.currentIndex

                implicitWidth: button.implicitWidth
                implicitHeight: button.implicitHeight
                Accessible.role: Accessible.PageTab
                Accessible.name: modelData
                Accessible.selected: isSelected
                Accessible.onPressAction: root.show(index)

                T.AbstractButton {
                    id: button

                    text: page.modelData
                    implicitWidth: implicitContentWidth + leftPadding + rightPadding
                    implicitHeight: implicitContentHeight + topPadding + bottomPadding
                    horizontalPadding: Math.max(4, Math.min(11, row.room))
                    verticalPadding: 6
                    focusPolicy: Qt.NoFocus
                    hoverEnabled: true
                    Accessible.ignored: true
                    onClicked: root.show(page.index)

                    contentItem: Text {
                        text: button.text
                        font: words.font
                        color: page.isSelected || button.hovered ? Theme.ink : Theme.secondary
                        Accessible.ignored: true
                    }
                    background: Rectangle {
                        radius: 8
                        color: page.isSelected ? Theme.selected : button.hovered ? Theme.hover : "transparent"

                        FocusRing {
                            // A click does not bring the keyboard here.
                            visible: root.activeFocus && page.isSelected
                            around: 8
                        }
                    }
                }
            }
        }
    }
}
