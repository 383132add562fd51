import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// What can be done with a row at one click, while the pointer or the keyboard is at it.
Rectangle {
    id: root

    required property ItemRow row

    implicitWidth: buttons.implicitWidth + 6
    implicitHeight: buttons.implicitHeight
    color: Theme.hover

    Row {
        id: buttons

        anchors.right: parent.right

        IconButton {
            symbol: "magnifyingglass"
            help: ItemText.showInFinder
            onClicked: root.row.rows.reveal(root.row.rowId)
        }
        IconButton {
            visible: root.row.canTrash
            enabled: !root.row.isBusy
            symbol: root.row.isInTrash ? "trash.slash" : "trash"
            help: ItemText.removeHelp(root.row.isInTrash)
            onClicked: root.row.rows.remove(root.row.rowId)
        }
    }
}
