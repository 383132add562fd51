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

    function openMenu(row: ItemRow) {
        if (!row.hasPath)
            return;
        menu.active = true;
        menu.open(row);
    }

    implicitWidth: 300
    implicitHeight: Math.min(contentHeight, maximumHeight)
    model: rows
    reuseItems: true
    clip: interactive
    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: true
    activeFocusOnTab: count > 0
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
        else
            return;
        event.accepted = true;
    }

    delegate: ItemRow {
        id: row

        required property int index

        width: ListView.view.width
        rows: root.rows
        wrapsSubtitle: root.wrapsSubtitles
        sizeColor: root.sizeColor
        hasChevronColumn: root.hasChevrons
        isCurrent: ListView.isCurrentItem
        showsFocus: root.showsFocus
        onChosen: {
            root.showsFocus = false;
            root.currentIndex = index;
            forceActiveFocus(Qt.MouseFocusReason);
        }
        onMenuWanted: root.openMenu(row)
    }

    Loader {
        id: menu

        function open(row: ItemRow) {
            const it = item as ItemMenu;
            it.rowId = row.rowId;
            it.canTrash = row.canTrash && !row.isBusy;
            it.isInTrash = row.isInTrash;
            it.popup(row, row.mirrored ? 8 : row.width - it.width - 8, row.height - 6);
        }

        active: false
        sourceComponent: ItemMenu {
            rows: root.rows
        }
    }
}
