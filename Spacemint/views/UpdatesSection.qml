import QtQuick
import Spacemint.Services
import Spacemint.UiKit
import Spacemint.Views

/// The settings of updates, and the state of the next update.
SettingsSection {
    id: root

    required property Updates updates

    title: Words.updates
    footnote: updates.status

    SettingsToggle {
        text: Words.installAutomatically
        checked: root.updates.installAutomatically
        onToggled: root.updates.installAutomatically = checked
    }
    SettingsRow {
        title: Words.version(root.updates.version)

        PrimaryButtonStyle {
            visible: root.updates.available
            text: Words.install
            onClicked: root.updates.install()
        }
        SecondaryButtonStyle {
            text: Words.checkNow
            enabled: root.updates.canCheck
            onClicked: root.updates.checkNow()
        }
    }
}
