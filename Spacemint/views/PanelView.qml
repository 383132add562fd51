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
    /// Whether the panel's corners are rounded; they are, where what is behind them can be seen.
    property bool rounded: true
    /// Height at the bottom that something else covers.
    property real covered: 0

    implicitWidth: 460
    implicitHeight: 700
    radius: rounded && !windowed ? 12 : 0
    color: Theme.canvas

    FocusScope {
        id: pages

        anchors.fill: parent
        anchors.bottomMargin: root.covered
        clip: true
        focus: true
        enabled: !question.hasKeyboard

        /// How far the settings have come: from 0 to 1. Positions follow from it, so that they do not move when
        /// the window gets its size.
        property real settingsShown: root.ui.page.showingSettings ? 1 : 0

        Behavior on settingsShown {
            PageMove {}
        }

        // Each page remembers what the keyboard is at.
        FocusScope {
            width: parent.width
            height: parent.height
            x: -pages.settingsShown * width / 3
            visible: pages.settingsShown < 1
            enabled: !root.ui.page.showingSettings
            focus: enabled

            MainPage {
                anchors.fill: parent
                radius: root.radius
                ui: root.ui
            }
        }
        LazyView {
            width: parent.width
            height: parent.height
            x: (1 - pages.settingsShown) * width
            view: "SettingsView.qml"
            wanted: pages.settingsShown > 0
            properties: ({
                    radius: root.radius,
                    ui: root.ui
                })
            focus: root.ui.page.showingSettings
        }
    }
    LazyView {
        id: question

        property bool hasKeyboard: false
        /// What the keyboard was at before; it may be gone with what was removed.
        property Item before
        property int reason

        anchors.fill: parent
        anchors.bottomMargin: root.covered
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
