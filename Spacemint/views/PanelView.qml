import QtQuick
import QtQuick.Templates as T
import Spacemint.UiKit
import Spacemint.Views

/// The whole interface, for the panel and for the window.
Rectangle {
    id: root

    required property Ui ui
    /// True in the window, false in the panel.
    property bool windowed: false
    /// Whether the panel has round corners; only a desktop with transparency can show them.
    property bool rounded: true
    /// Height at the bottom that something else covers.
    property real covered: 0
    /// From this width on, in the size of the text, the window has a layout of its own.
    readonly property bool isWide: windowed && width >= 720 * Theme.textScale && root.ui.page.state === Page.Tabs

    /// Gives the focus back to the control that had it.
    function takeFocus() {
        pages.forceActiveFocus(Theme.focusReason());
    }

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

        /// The progress of the animation to the settings page, from 0 to 1. The positions are bound to it, so that a
        /// new size of the window does not start an animation.
        property real settingsShown: root.ui.page.showingSettings ? 1 : 0

        Behavior on settingsShown {
            PageMove {}
        }

        // A scope for each page, which remembers the item with the keyboard focus.
        FocusScope {
            width: parent.width
            height: parent.height
            x: -pages.settingsShown * width / 3
            visible: pages.settingsShown < 1
            enabled: !root.ui.page.showingSettings
            focus: enabled

            LazyView {
                anchors.fill: parent
                visible: !root.isWide
                view: "MainPage.qml"
                wanted: !root.isWide
                focus: wanted
                properties: ({
                        radius: root.radius,
                        ui: root.ui
                    })
            }
            LazyView {
                anchors.fill: parent
                visible: root.isWide
                view: "WidePage.qml"
                wanted: root.isWide
                focus: wanted
                properties: ({
                        ui: root.ui
                    })
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
        /// The item that had the keyboard focus before; null if it was removed meanwhile.
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
            (before ?? pages)?.forceActiveFocus(reason); // both are null during destruction
        }
    }
    // A folder, or a file with a scan.
    DropArea {
        id: drop

        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: event => root.ui.source.open(event.urls[0])
    }
    Rectangle {
        anchors.fill: parent
        anchors.margins: 2
        visible: drop.containsDrag
        radius: Math.max(root.radius, 8)
        color: "transparent"
        border.width: 3
        border.color: Theme.teal
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
