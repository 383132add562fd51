import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The page before the first scan.
ColumnLayout {
    id: root

    required property Ui ui

    spacing: 0

    ScrollColumn {
        Layout.fillWidth: true
        Layout.fillHeight: true
        padding: 20
        spacing: 14

        Label {
            Layout.fillWidth: true
            text: "Never be surprised by a full disk again."
            font: Theme.display(30)
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        Label {
            Layout.fillWidth: true
            text: "Spacemint watches your free space and quietly keeps track of what's using it."
            size: 14
            color: Theme.secondary
            wrapMode: Text.Wrap
            lineHeight: 1.2
        }
        WelcomePoint {
            Layout.topMargin: 14
            symbol: "bell"
            title: "A heads-up before you run out"
            line: "You choose the level. 20 GB free by default."
        }
        WelcomePoint {
            symbol: "leaf"
            title: "Scans you'll never notice"
            line: "Low priority, every few hours."
        }
        WelcomePoint {
            symbol: "sparkle.magnifyingglass"
            title: "Answers ready instantly"
            line: "What grew, what's big, and what's safe to clean."
        }
        Card {
            Layout.fillWidth: true
            Layout.topMargin: 14

            WelcomePoint {
                symbol: root.ui.page.hasAccess ? "checkmark.circle.fill" : "lock"
                tint: root.ui.page.hasAccess ? Theme.teal : Theme.lavenderInk
                title: root.ui.page.accessTitle
                line: root.ui.page.hasAccess ? "Spacemint can see your whole disk." : "Some sizes will be too small."
            }
            SecondaryButtonStyle {
                Layout.leftMargin: Theme.scaled(22) + 14
                visible: !root.ui.page.hasAccess
                text: "Open Settings"
                onClicked: root.ui.page.openAccessSettings()
            }
        }
    }
    PrimaryButtonStyle {
        Layout.fillWidth: true
        Layout.margins: 20
        Layout.topMargin: 8
        fullWidth: true
        text: "Start first scan"
        onClicked: root.ui.page.begin()
    }
    Shortcut {
        sequences: ["Return", "Enter"]
        autoRepeat: false
        // If the keyboard is at another button, Return presses that button.
        enabled: root.enabled && root.visible && !(root.Window.activeFocusItem?.visualFocus ?? false)
        onActivated: root.ui.page.begin()
    }
}
