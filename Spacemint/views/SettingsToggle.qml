import QtQuick.Layouts
import Spacemint.UiKit

/// A switch as high as a SettingsRow.
Toggle {
    Layout.fillWidth: true
    Layout.minimumHeight: Theme.scaled(26)
}
