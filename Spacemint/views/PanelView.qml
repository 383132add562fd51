import QtQuick
import QtQuick.Templates as T
import Spacemint.UiKit
import Spacemint.Views

/// All of the interface, in the panel and in the window.
Rectangle {
    id: root

    required property Ui ui
    /// Whether it is in the window, and not in the panel.
    property bool windowed: false

    implicitWidth: 460
    implicitHeight: 700
    radius: windowed ? 0 : 12
    color: Theme.canvas

    FocusScope {
        id: pages

        anchors.fill: parent
        clip: true
        focus: true
        enabled: !question.hasKeyboard

        // Each page remembers what the keyboard is at.
        FocusScope {
            width: parent.width
            height: parent.height
            x: root.ui.page.showingSettings ? -width / 3 : 0
            visible: x > -width / 3
            enabled: !root.ui.page.showingSettings
            focus: enabled

            MainPage {
                anchors.fill: parent
                radius: root.radius
                ui: root.ui
            }
            Behavior on x {
                PageMove {}
            }
        }
        LazyView {
            width: parent.width
            height: parent.height
            x: root.ui.page.showingSettings ? 0 : width
            view: "SettingsView.qml"
            wanted: x < width
            properties: ({
                    radius: root.radius,
                    ui: root.ui
                })
            focus: root.ui.page.showingSettings

            Behavior on x {
                PageMove {}
            }
        }
    }
    LazyView {
        id: question

        property bool hasKeyboard: false
        /// What the keyboard was at before; it may be gone with what was removed.
        property Item before
        property int reason

        anchors.fill: parent
        view: "ConfirmationCard.qml"
        wanted: root.ui.confirmation.asked
        properties: ({
                radius: root.radius,
                ui: root.ui
            })
        onLoaded: {
            before = Window.activeFocusItem;
            reason = (before as T.Control)?.focusReason ?? Qt.OtherFocusReason;
            hasKeyboard = true;
            item.forceActiveFocus(Qt.OtherFocusReason);
        }
        onItemChanged: {
            if (item)
                return;
            hasKeyboard = false;
            (before ?? pages)?.forceActiveFocus(reason); // neither is there when all of it ends
        }
    }
    Rectangle {
        anchors.fill: parent
        visible: !root.windowed
        radius: root.radius
        color: "transparent"
        border.width: 1
        border.color: Theme.border
    }
}
