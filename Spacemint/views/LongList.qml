import QtQuick
import Spacemint.UiKit

/// A list that fills a tab, on a card of its own below its header.
RowList {
    id: root

    readonly property real headerHeight: headerItem ? headerItem.height : 0

    leftMargin: 24
    rightMargin: 24
    topMargin: 20
    bottomMargin: 24
    interactive: true
    clip: true
    cacheBuffer: 200

    Rectangle {
        parent: root.contentItem
        z: -1
        x: -4
        y: -4
        width: root.width - 40
        height: root.contentHeight - root.headerHeight + 8
        visible: root.count > 0
        radius: 12
        color: Theme.card
        border.width: 1
        border.color: Theme.border
    }
}
