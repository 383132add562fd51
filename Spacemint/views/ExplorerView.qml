import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The open folder as a tree of rows and, beside it, as a map.
FocusScope {
    id: root

    required property Ui ui
    readonly property Explorer explorer: ui.explorer
    readonly property real step: width / Theme.textScale
    /// The usual width of the list; the person may drag it.
    readonly property real usualWidth: Theme.scaled(step >= 984 ? 380 : step >= 740 ? 320 : 264)
    readonly property real leastWidth: Theme.scaled(264)
    readonly property real mostWidth: Math.max(leastWidth, Math.min(Theme.scaled(480), width * 0.6))
    readonly property real listWidth: within(explorer.listWidth || usualWidth)

    function within(width: real): real {
        return Math.max(leastWidth, Math.min(width, mostWidth));
    }

    Binding {
        target: root.explorer
        property: "showsRows"
        value: true
    }
    Component.onDestruction: explorer.showsRows = false

    Rectangle {
        id: card

        anchors.left: parent.left
        anchors.leftMargin: 20
        y: 14
        width: root.listWidth
        height: root.height - 14 - 14
        radius: 12
        color: Theme.card
        border.width: 1
        border.color: Theme.border

        Placeholder {
            anchors {
                left: parent.left
                right: parent.right
                top: parent.top
                margins: 14
            }
            text: root.explorer.rows.text
        }
        RowList {
            id: list

            anchors.fill: parent
            anchors.margins: 4
            rows: root.explorer.rows
            name: root.explorer.title
            isTree: true
            hasChangeColumn: root.listWidth >= Theme.scaled(300)
            showsDates: root.explorer.colouring === Explorer.Age
            interactive: true
            clip: true
            focus: true
            cacheBuffer: 0
            selectedIndex: root.explorer.selectedRow
            pointedIndex: root.explorer.pointedRow
            onPointed: index => root.explorer.pointRow(rows, index)
            onRowSelected: index => root.explorer.selectRow(index)
            onRowOpened: index => root.explorer.openRow(index)
            onCurrentIndexChanged: {
                if (activeFocus && Theme.isKeyboardInUse)
                    root.explorer.selectRow(currentIndex);
            }
            Keys.onLeftPressed: event => {
                if (event.modifiers & Qt.AltModifier)
                    root.explorer.goUp();
                else
                    root.explorer.turnRow(currentIndex, LayoutMirroring.enabled);
            }
            Keys.onRightPressed: root.explorer.turnRow(currentIndex, !LayoutMirroring.enabled)
            Keys.onPressed: event => {
                event.accepted = event.key === Qt.Key_Backspace;
                if (event.accepted)
                    root.explorer.goUp();
            }
        }
    }
    // Between the list and the map: the pointer or the arrow keys move their border.
    MouseArea {
        id: border

        /// The direction of the right arrow key.
        readonly property int forward: LayoutMirroring.enabled ? -1 : 1
        property real grabbedAt: 0
        // What Qt's interface for the values of a slider reads.
        property int value: root.listWidth
        property int minimumValue: root.leastWidth
        property int maximumValue: root.mostWidth

        anchors.left: card.right
        y: card.y
        width: 16
        height: card.height
        cursorShape: Qt.SplitHCursor
        activeFocusOnTab: true
        Accessible.role: Accessible.Slider
        Accessible.name: Words.listWidth
        Accessible.focusable: true
        onPressed: mouse => grabbedAt = mouse.x
        onPositionChanged: mouse => root.explorer.listWidth = root.within(root.listWidth + forward * (mouse.x - grabbedAt))
        Keys.onPressed: event => {
            const step = forward * Theme.scaled(16);
            const widths = new Map([[Qt.Key_Left, root.listWidth - step], [Qt.Key_Right, root.listWidth + step], [Qt.Key_Home, root.leastWidth], [Qt.Key_End, root.mostWidth]]);
            event.accepted = widths.has(event.key);
            if (event.accepted)
                root.explorer.listWidth = root.within(widths.get(event.key));
        }

        FocusRing {
            visible: border.activeFocus && Theme.isKeyboardInUse
            around: 4
            outside: -3
        }
    }
    Item {
        id: pane

        anchors {
            left: card.right
            leftMargin: 16
            right: parent.right
            rightMargin: 20
            top: card.top
            bottom: legend.top
            bottomMargin: 6
        }
        clip: true
        visible: !root.explorer.isEmpty

        TreeMap {
            id: map

            /// How far the picture is from its place, from 1 to 0.
            property real zoom: 0

            anchors.fill: parent
            explorer: root.explorer
            mirrored: LayoutMirroring.enabled
            Accessible.role: Accessible.Graphic
            Accessible.name: root.explorer.mapName
            Accessible.description: Words.spoken([root.explorer.aboutName, root.explorer.aboutDetail || root.explorer.summary])
            onZoomed: opening.restart()
            onMenuWanted: (x, y) => {
                list.forceActiveFocus(Qt.MouseFocusReason);
                list.openMenuAt(list.currentItem as ItemRow, map, x, y);
            }
            transform: [
                Scale {
                    xScale: 1 + map.zoom * (map.zoomedFrom.width / map.width - 1)
                    yScale: 1 + map.zoom * (map.zoomedFrom.height / map.height - 1)
                },
                Translate {
                    x: map.zoom * map.zoomedFrom.x
                    y: map.zoom * map.zoomedFrom.y
                }
            ]

            NumberAnimation {
                id: opening

                target: map
                property: "zoom"
                from: 1
                to: 0
                duration: Theme.duration(220)
                easing.type: Easing.OutCubic
            }
            TileFrame {
                frame: map.pointedFrame
                visible: width > 0 && !opening.running
                border.width: 1.5
                border.color: Theme.secondary
            }
            TileFrame {
                frame: map.selectedFrame
                visible: width > 0 && !opening.running
                border.width: 2
                border.color: Theme.ink
            }
        }
    }
    PictureLegend {
        id: legend

        anchors {
            left: pane.left
            right: pane.right
            bottom: card.bottom
        }
        explorer: root.explorer
    }
    Connections {
        target: root.explorer

        function onSelectionChanged() {
            const row = root.explorer.selectedRow;
            if (row < 0 || row === list.currentIndex)
                return;
            list.currentIndex = row;
            list.positionViewAtIndex(row, ListView.Contain);
        }
    }
}
