import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The menu of a row. It keeps acting on that row when the list changes.
MenuPopup {
    id: root

    required property ItemRows rows
    property int rowId: -1
    property bool canTrash: false
    property bool isInTrash: false

    MenuEntry {
        visible: root.rows?.isOfHere ?? false
        height: visible ? implicitHeight : 0
        text: ItemText.showInFileManager
        symbol: "magnifyingglass"
        onTriggered: root.rows.reveal(root.rowId)
    }
    MenuEntry {
        text: ItemText.showInFolders
        symbol: "folder"
        onTriggered: root.rows.showInFolders(root.rowId)
    }
    MenuEntry {
        text: ItemText.copyPath
        symbol: "doc"
        onTriggered: root.rows.copyPath(root.rowId)
    }
    MenuEntry {
        visible: root.rows?.isOfHere ?? false
        height: visible ? implicitHeight : 0
        text: ItemText.leaveOut
        symbol: "app.dashed"
        onTriggered: root.rows.leaveOut(root.rowId)
    }
    MenuEntry {
        visible: root.canTrash
        height: visible ? implicitHeight : 0
        text: ItemText.removeEntry(root.isInTrash)
        symbol: root.isInTrash ? "trash.slash" : "trash"
        ink: Theme.critical
        onTriggered: root.rows.remove(root.rowId)
    }
}
