import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The buttons of the row that the pointer or the keyboard is at.
Item {
    id: root

    required property ItemRow row

    implicitWidth: buttons.implicitWidth + 6
    implicitHeight: buttons.implicitHeight

    Row {
        id: buttons

        anchors.right: parent.right

        IconButton {
            visible: root.row.rows.isOfHere
            symbol: "magnifyingglass"
            help: ItemText.showInFileManager
            Accessible.description: root.row.title
            onClicked: root.row.rows.reveal(root.row.rowId)
        }
        IconButton {
            visible: root.row.canTrash
            enabled: !root.row.isBusy
            symbol: root.row.isInTrash ? "trash.slash" : "trash"
            help: ItemText.removeHelp(root.row.isInTrash)
            Accessible.description: root.row.title
            onClicked: root.row.rows.remove(root.row.rowId)
        }
    }
}
