import QtQuick
import Spacemint.UiKit

/// A list that fills a tab, on a card of its own below its header.
RowList {
    id: root

    // It is given its height. As high as all of its rows, it would make every one of them before that.
    implicitHeight: 200
    leftMargin: 24
    rightMargin: 24
    topMargin: 4
    bottomMargin: 24
    interactive: true
    clip: true
    // Rows are used again, and so none need be made ahead.
    cacheBuffer: 0

    // The card, as far as it is seen: in the midst of the list nothing of it changes.
    Rectangle {
        readonly property real end: Math.min(root.height + radius, root.originY + root.contentHeight - root.contentY + 4)

        parent: root
        z: -1
        x: 20
        y: Math.max(-radius, root.originY - root.contentY - 4)
        width: root.width - 40
        height: end - y
        visible: root.count > 0
        radius: 12
        color: Theme.card
        border.width: 1
        border.color: Theme.border
    }
}
