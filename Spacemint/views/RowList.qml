pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// A list of ItemRow. It is as high as its rows, up to `maximumHeight`. Only visible rows exist.
ListView {
    id: root

    required property ItemRows rows
    property bool wrapsSubtitles: false
    property color sizeColor: Theme.ink
    property bool hasChangeColumn: false
    property bool showsDates: false
    /// A list whose rows are a tree: a click selects a row, a click on its chevron unfolds it.
    property bool isTree: false
    property real barLength: 0
    /// The index of the selected row, and of the row that something else points at; -1 for none.
    property int selectedIndex: -1
    property int pointedIndex: -1
    /// Whether the bars move to their new lengths.
    property bool barsMove: false
    /// A list that would be higher than this scrolls.
    property real maximumHeight: Infinity
    /// Whether rows can be marked, to remove several at once.
    property bool canMark: false
    /// The name of the list for screen readers.
    property string name

    /// The time of the last click that opened a folder. The second click of a double-click is ignored.
    property double openedAt: -Infinity
    property real heightBefore: 0
    /// The width of the widest size of the rows that were visible.
    property real sizeWidth: 0

    /// The row under the pointer changed; -1 for none.
    signal pointed(int index)
    // Of a tree.
    signal rowSelected(int index)
    signal rowClicked(int index)
    signal rowOpened(int index)

    function openMenu(row: ItemRow) {
        openMenuAt(row, row, row.mirrored ? 8 : -8, row.height - 6);
    }

    /// Opens the menu of the row at a place of another item; from the right if `x` is negative.
    function openMenuAt(row: ItemRow, over: Item, x: real, y: real) {
        if (!row?.hasPath)
            return;
        menu.wanted = true;
        const it = menu.item as ItemMenu;
        it.rows = row.rows;
        it.rowId = row.rowId;
        it.canTrash = row.canTrash && !row.isBusy;
        it.isInTrash = row.isInTrash;
        it.popup(over, x < 0 ? over.width - it.width + x : x, y);
    }

    /// Marks the rows up to the next one; the one before if `step` is negative.
    function markNext(step: int) {
        const next = rows.rowIdAt(currentIndex + step);
        if (next < 0)
            return;
        if (rows.markedCount === 0)
            rows.unmarkAll(rows.rowIdAt(currentIndex));
        currentIndex += step;
        rows.markTo(next);
    }

    /// The keys that mark rows and remove what is marked; false for all others.
    function markByKey(event): bool {
        if (event.modifiers === Qt.ShiftModifier && (event.key === Qt.Key_Down || event.key === Qt.Key_Up))
            markNext(event.key === Qt.Key_Down ? 1 : -1);
        else if (event.matches(StandardKey.SelectAll))
            rows.markAll();
        else if (event.key === Qt.Key_Delete && rows.markedCount > 0)
            rows.removeMarked();
        else if (event.key === Qt.Key_Escape && rows.markedCount > 0)
            rows.unmarkAll();
        else
            return false;
        return true;
    }

    /// Moves by some pages; backwards if negative.
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
    // The current row stays in view when a banner takes some of the height.
    onHeightChanged: {
        const wasInView = currentItem && currentItem.y + currentItem.height <= contentY + heightBefore;
        heightBefore = height;
        if (activeFocus && wasInView)
            positionViewAtIndex(currentIndex, ListView.Contain);
    }
    // A list that was empty at first has no current row, so that nothing would show the keyboard.
    onActiveFocusChanged: {
        if (activeFocus && currentIndex < 0 && count > 0)
            currentIndex = 0;
    }
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: true
    activeFocusOnTab: true
    highlightMoveDuration: Theme.duration(120)
    highlightResizeDuration: 0
    Accessible.role: isTree ? Accessible.Tree : Accessible.List
    Accessible.name: name
    Keys.onPressed: event => {
        if (root.canMark && root.markByKey(event))
            event.accepted = true;
        else if (event.key === Qt.Key_Home)
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
        barMoves: root.barsMove
        hasChevronColumn: root.rows.hasChevrons
        hasChangeColumn: root.hasChangeColumn
        showsDates: root.showsDates
        sizeWidth: root.sizeWidth
        onSizeWidthWanted: width => root.sizeWidth = Math.max(root.sizeWidth, width)
        isInTree: root.isTree
        barLength: root.barLength
        isCurrent: ListView.isCurrentItem
        isSelected: index === root.selectedIndex
        isPointedAt: index === root.pointedIndex
        onIsUnderPointerChanged: root.pointed(isUnderPointer ? index : -1)
        // Hide pooled delegates.
        ListView.onPooled: row.visible = false
        ListView.onReused: row.visible = true
        onChosen: time => {
            if (time - root.openedAt < Application.styleHints.mouseDoubleClickInterval)
                return;
            root.currentIndex = row.index;
            row.forceActiveFocus(Qt.MouseFocusReason);
            if (root.isTree) {
                root.rowSelected(row.index);
                return root.rowClicked(row.index);
            }
            row.rows.unmarkAll(row.rowId);
            if (row.showsChevron)
                root.openedAt = time;
            row.open();
        }
        onOpened: root.rowOpened(index)
        onMarking: isRange => {
            if (!root.canMark)
                return;
            root.currentIndex = row.index;
            row.forceActiveFocus(Qt.MouseFocusReason);
            if (isRange)
                row.rows.markTo(row.rowId);
            else
                row.rows.toggleMark(row.rowId);
        }
        onMenuWanted: {
            root.currentIndex = row.index;
            if (root.isTree)
                root.rowSelected(row.index);
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

        // Give the focus back, unless the menu opened another page.
        function onClosed() {
            if (root.enabled && root.visible)
                root.forceActiveFocus(Qt.PopupFocusReason);
        }
    }
}
