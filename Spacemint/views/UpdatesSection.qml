import QtQuick
import QtQuick.Layouts
import Spacemint.Services
import Spacemint.UiKit

/// The settings of updates, and the state of the next update.
SettingsSection {
    id: root

    required property Updates updates

    title: "Updates"
    footnote: updates.status

    SettingsToggle {
        text: "Install updates automatically"
        checked: root.updates.installAutomatically
        onToggled: root.updates.installAutomatically = checked
    }
    SettingsRow {
        title: "Version " + root.updates.version

        PrimaryButtonStyle {
            visible: root.updates.available
            text: "Install"
            onClicked: root.updates.install()
        }
        SecondaryButtonStyle {
            text: "Check now"
            enabled: root.updates.canCheck
            onClicked: root.updates.checkNow()
        }
    }
}
