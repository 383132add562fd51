pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The open folder as an icicle, and a line about the block under the pointer.
Column {
    id: root

    required property Explorer explorer

    /// The row of the folder's item at this index should become the current one of the list below.
    signal childWanted(int index)

    spacing: 6

    // The rows that are not there leave no gap.
    Item {
        width: parent.width
        height: icicle.rows * Theme.scaled(28) + Math.max(0, icicle.rows - 1) * 2

        Icicle {
            id: icicle

            function announceCurrent() {
                if (activeFocus)
                    announce(spokenBlocks.itemAt(current));
            }

            width: parent.width
            height: 3 * Theme.scaled(28) + 4
            explorer: root.explorer
            mirrored: LayoutMirroring.enabled
            Accessible.role: Accessible.Tree
            Accessible.name: root.explorer.mapName
            Accessible.description: root.explorer.summary
            onCurrentChanged: announceCurrent()
            onActiveFocusChanged: announceCurrent()
            onZoomed: opening.restart()
            onChildWanted: index => root.childWanted(index)

            ParallelAnimation {
                id: opening

                NumberAnimation {
                    target: icicle
                    property: "move"
                    from: 0
                    to: 1
                    duration: Theme.duration(220)
                    easing.type: Easing.OutCubic
                }
                NumberAnimation {
                    target: icicle
                    property: "strength"
                    from: 0
                    to: 1
                    duration: Theme.duration(120)
                }
            }
            // The blocks, for screen readers.
            Repeater {
                id: spokenBlocks

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
                    Accessible.focusable: true
                    Accessible.focused: icicle.activeFocus && icicle.current === index
                    Accessible.onPressAction: icicle.press(index)
                }
            }
            TileFrame {
                frame: icicle.pointedFrame
                visible: width > 0 && !opening.running
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
    }
    PictureLegend {
        width: parent.width
        explorer: root.explorer
        isBrief: true
    }
}
