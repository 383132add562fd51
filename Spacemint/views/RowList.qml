pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// Items one below the other. It is as high as they are, where it may be; only those that are seen are made.
ListView {
    id: root

    required property ItemRows rows
    property bool hasChevrons: false
    property bool wrapsSubtitles: false
    property color sizeColor: Theme.ink
    /// Whether the one that the keyboard is at is marked: not after a click.
    property bool showsFocus: true
    /// The length of the list at which it scrolls by itself.
    property real maximumHeight: Infinity
    /// What the list is of, for those who do not see it.
    property string name

    /// When a folder was opened here by a click. What follows at once is that click's second half.
    property double openedAt: -Infinity

    function openMenu(row: ItemRow) {
        if (!row.hasPath)
            return;
        menu.wanted = true;
        const it = menu.item as ItemMenu;
        it.rows = row.rows;
        it.rowId = row.rowId;
        it.canTrash = row.canTrash && !row.isBusy;
        it.isInTrash = row.isInTrash;
        it.popup(row, row.mirrored ? 8 : row.width - it.width - 8, row.height - 6);
    }

    /// A page on, or back.
    function turn(pages: int) {
        const row = currentItem ? currentItem.height : 1;
        const step = pages * Math.max(1, Math.floor(height / row) - 1);
        currentIndex = Math.max(0, Math.min(count - 1, currentIndex + step));
    }

    implicitWidth: 300
    implicitHeight: Math.min(contentHeight, maximumHeight)
    model: rows
    reuseItems: true
    clip: interactive
    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: true
    activeFocusOnTab: true
    highlightMoveDuration: Theme.duration(120)
    highlightResizeDuration: 0
    Accessible.role: Accessible.List
    Accessible.name: name
    Keys.onPressed: event => {
        root.showsFocus = true;
        if (event.key === Qt.Key_Home)
            root.currentIndex = 0;
        else if (event.key === Qt.Key_End)
            root.currentIndex = root.count - 1;
        else if (event.key === Qt.Key_PageUp && root.interactive)
            root.turn(-1);
        else if (event.key === Qt.Key_PageDown && root.interactive)
            root.turn(1);
        else
            return;
        event.accepted = true;
    }

    delegate: ItemRow {
        id: row

        required property int index

        width: root.width - root.leftMargin - root.rightMargin
        rows: root.rows
        wrapsSubtitle: root.wrapsSubtitles
        sizeColor: root.sizeColor
        hasChevronColumn: root.hasChevrons
        isCurrent: ListView.isCurrentItem
        showsFocus: root.showsFocus
        // Rows that wait to be used again are nowhere.
        ListView.onPooled: row.visible = false
        ListView.onReused: row.visible = true
        onChosen: time => {
            if (time - root.openedAt < Application.styleHints.mouseDoubleClickInterval)
                return;
            root.showsFocus = false;
            root.currentIndex = row.index;
            row.forceActiveFocus(Qt.MouseFocusReason);
            if (!row.showsChevron)
                return;
            root.openedAt = time;
            row.open();
        }
        onMenuWanted: byMouse => {
            root.showsFocus = !byMouse;
            root.currentIndex = row.index;
            root.openMenu(row);
        }
    }

    LazyView {
        id: menu

        view: "ItemMenu.qml"
        wanted: false
        properties: ({
                rows: root.rows
            })
    }
    Connections {
        target: menu.item

        // The keyboard is where it was, unless the menu led to somewhere else.
        function onClosed() {
            if (root.enabled && root.visible)
                root.forceActiveFocus(Qt.PopupFocusReason);
        }
    }
}
