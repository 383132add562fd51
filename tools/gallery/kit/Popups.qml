import QtQuick
import Spacemint.UiKit

Item {
    id: root

    /// What is shown: 0 the menu, 1 the list of the picker, 2 the tool tip.
    required property int shown

    function act() {
        if (shown === 0)
            menu.popup(0, 0);
        if (shown === 1)
            picker.popup.open();
    }

    implicitWidth: 320
    implicitHeight: 240

    Picker {
        id: picker

        visible: root.shown === 1
        model: ["Every 2 hours", "Every 4 hours", "Every 8 hours", "Once a day"]
        currentIndex: 1
    }
    IconButton {
        id: button

        anchors.horizontalCenter: parent.horizontalCenter
        visible: root.shown === 2
        symbol: "arrow.clockwise"
    }
    Help {
        parent: button
        text: "Scan again"
        delay: 0
        wanted: root.shown === 2
    }
    MenuPopup {
        id: menu

        MenuEntry {
            text: "Show in file manager"
            symbol: "folder"
        }
        MenuEntry {
            text: "Copy path"
            symbol: "doc"
            highlighted: true
        }
        MenuEntry {
            text: "Not usable"
            symbol: "lock"
            enabled: false
        }
        MenuEntry {
            text: "Move to Trash"
            symbol: "trash"
            ink: Theme.critical
        }
    }
}
