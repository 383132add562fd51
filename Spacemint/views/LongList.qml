import QtQuick
import Spacemint.UiKit

/// A list that fills a tab, on a card of its own.
RowList {
    id: root

    // A layout sets the height. With the height of all rows the list would first make every row.
    implicitHeight: 200
    /// A wide list leaves the rest of its width free.
    property real maximumWidth: Infinity
    readonly property real cardWidth: Math.min(width - 40, maximumWidth)
    readonly property real cardLeft: LayoutMirroring.enabled ? width - cardWidth - 20 : 20

    contentX: -leftMargin
    leftMargin: cardLeft + 4
    rightMargin: width - cardLeft - cardWidth + 4
    interactive: true
    canMark: true
    clip: true
    // Delegates are reused, so none are made ahead.
    cacheBuffer: 0
    // Items and not margins: scrolling to the first row then shows the edge of the card too.
    header: Item {
        implicitHeight: 4
    }
    footer: Item {
        implicitHeight: 24
    }

    // Card background, clipped to the visible area.
    Rectangle {
        readonly property real listTop: root.originY - root.contentY
        readonly property real end: Math.min(root.height + radius, listTop + root.contentHeight - 20)

        parent: root
        z: -1
        x: root.cardLeft
        y: Math.max(-radius, listTop)
        width: root.cardWidth
        height: end - y
        visible: root.count > 0
        radius: 12
        color: Theme.card
        border.width: 1
        border.color: Theme.border
    }
}
