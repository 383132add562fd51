pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The open folder as an icicle, and a line about the block under the pointer.
Column {
    id: root

    required property Explorer explorer

    /// The row of this index should become the current one of the list below.
    signal rowWanted(int index)

    spacing: 6

    Icicle {
        id: icicle

        width: parent.width
        height: 3 * Theme.scaled(28) + 4
        explorer: root.explorer
        Accessible.role: Accessible.Tree
        Accessible.name: root.explorer.mapName
        Accessible.description: root.explorer.summary
        onRowWanted: index => root.rowWanted(index)

        // The blocks, for screen readers.
        Repeater {
            model: icicle.blocks

            Item {
                required property int index
                required property var modelData

                x: modelData.frame.x
                y: modelData.frame.y
                width: modelData.frame.width
                height: modelData.frame.height
                Accessible.role: Accessible.TreeItem
                Accessible.name: modelData.spoken
                Accessible.focused: icicle.activeFocus && icicle.current === index
            }
        }
        TileFrame {
            frame: icicle.pointedFrame
            border.width: 2
            border.color: Theme.ink
        }
        FocusRing {
            anchors.fill: null
            x: icicle.currentFrame.x - outside
            y: icicle.currentFrame.y - outside
            width: icicle.currentFrame.width + 2 * outside
            height: icicle.currentFrame.height + 2 * outside
            visible: icicle.activeFocus && Theme.isKeyboardInUse
            around: 4
            outside: 1
        }
    }
    PictureLegend {
        width: parent.width
        explorer: root.explorer
        isBrief: true
    }
}
