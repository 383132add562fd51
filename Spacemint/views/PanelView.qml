import QtQuick
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
        enabled: !root.ui.confirmation.asked

        MainPage {
            id: mainPage

            width: parent.width
            height: parent.height
            x: root.ui.page.showingSettings ? -width / 3 : 0
            visible: x > -width / 3
            enabled: !root.ui.page.showingSettings
            radius: root.radius
            ui: root.ui

            Behavior on x {
                PageMove {}
            }
        }
        Loader {
            id: settings

            width: parent.width
            height: parent.height
            x: root.ui.page.showingSettings ? 0 : width
            active: x < width
            sourceComponent: SettingsView {
                radius: root.radius
                ui: root.ui
            }

            Behavior on x {
                PageMove {}
            }
        }
    }
    Loader {
        anchors.fill: parent
        active: root.ui.confirmation.asked
        onLoaded: item.forceActiveFocus()
        // The keyboard goes back to where it was.
        onActiveChanged: if (!active) pages.forceActiveFocus()
        sourceComponent: ConfirmationCard {
            radius: root.radius
            ui: root.ui
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
