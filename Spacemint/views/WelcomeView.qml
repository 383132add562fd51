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
        maximumWidth: Theme.scaled(640)
        padding: 20
        spacing: 14

        Label {
            Layout.fillWidth: true
            text: Words.welcomeTitle
            font: Theme.display(30, text)
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        Label {
            Layout.fillWidth: true
            text: Words.welcomeLine
            size: 14
            color: Theme.secondary
            wrapMode: Text.Wrap
            lineHeight: 1.2
        }
        WelcomePoint {
            Layout.topMargin: 14
            symbol: "bell"
            title: Words.warningPoint
            line: Words.warningPointLine
        }
        WelcomePoint {
            symbol: "leaf"
            title: Words.scansPoint
            line: Words.scansPointLine
        }
        WelcomePoint {
            symbol: "sparkle.magnifyingglass"
            title: Words.answersPoint
            line: Words.answersPointLine
        }
        Card {
            Layout.fillWidth: true
            Layout.topMargin: 14

            WelcomePoint {
                symbol: root.ui.page.hasAccess ? "checkmark.circle.fill" : "lock"
                tint: root.ui.page.hasAccess ? Theme.teal : Theme.lavenderInk
                title: root.ui.page.accessTitle
                line: root.ui.page.accessLine
            }
            SecondaryButtonStyle {
                Layout.leftMargin: Theme.scaled(22) + 14
                visible: !root.ui.page.hasAccess
                text: Words.openSettings
                onClicked: root.ui.page.openAccessSettings()
            }
        }
    }
    PrimaryButtonStyle {
        Layout.fillWidth: true
        Layout.maximumWidth: Theme.scaled(640)
        Layout.margins: 20
        Layout.topMargin: 8
        fullWidth: true
        text: Words.startFirstScan
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
