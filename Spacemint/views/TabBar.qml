pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Spacemint.UiKit
import Spacemint.Views

/// The bar that chooses a page.
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
    Accessible.name: Words.pages
    // The bar has the focus, and not the tab.
    Accessible.description: titles[currentIndex] ?? ""
    Keys.onLeftPressed: show(currentIndex - 1)
    Keys.onRightPressed: show(currentIndex + 1)
    onCurrentIndexChanged: view.reveal()

    TextMetrics {
        id: words

        font: Theme.text(12.5, Font.DemiBold)
        text: root.titles.join("")
    }

    // With large letters the padding shrinks first, then the bar scrolls.
    Flickable {
        id: view

        /// Room for the focus ring.
        readonly property real edge: 4
        readonly property real room: (root.width - words.advanceWidth - 3 * row.spacing - 4) / 8

        /// Scrolls to the chosen tab, and to the beginning of its neighbours.
        function reveal() {
            const tab = tabs.itemAt(root.currentIndex);
            if (!tab)
                return;
            const beside = 20;
            const last = contentWidth + edge - width;
            const from = Math.max(contentX, tab.x + tab.width + beside - width);
            contentX = Math.max(-edge, Math.min(from, tab.x - beside, last));
        }

        anchors.fill: parent
        anchors.margins: -edge
        leftMargin: edge
        rightMargin: edge
        topMargin: edge
        contentWidth: row.width
        contentHeight: row.height
        interactive: row.implicitWidth > root.width
        clip: interactive
        flickableDirection: Flickable.HorizontalFlick
        boundsBehavior: Flickable.StopAtBounds
        onWidthChanged: reveal()
        onContentWidthChanged: reveal()

        Row {
            id: row

            // Mirrored, the tabs begin at the other end.
            width: Math.max(implicitWidth, root.width)
            spacing: 4

            Repeater {
                id: tabs

                model: root.titles

                // Qt overrides the role of a control, so an item around the button has the role of a tab.
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
                        horizontalPadding: Math.max(4, Math.min(11, view.room))
                        verticalPadding: 6
                        focusPolicy: Qt.NoFocus
                        hoverEnabled: true
                        Accessible.ignored: true
                        onClicked: root.show(page.index)

                        contentItem: Label {
                            text: button.text
                            font: words.font
                            color: page.isSelected || button.hovered ? Theme.ink : Theme.secondary
                            Accessible.ignored: true
                        }
                        background: Rectangle {
                            radius: 8
                            color: page.isSelected ? Theme.selected : button.hovered ? Theme.hover : "transparent"

                            FocusRing {
                                // A click does not give the focus to the bar.
                                visible: root.activeFocus && page.isSelected
                                around: 8
                            }
                        }
                    }
                }
            }
        }
    }
}
