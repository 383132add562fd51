import QtQuick.Layouts
import Spacemint.UiKit

/// A setting that is on or off, as high as a SettingsRow.
Toggle {
    Layout.fillWidth: true
    Layout.minimumHeight: Theme.scaled(26)
}
