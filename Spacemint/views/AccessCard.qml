import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// Says that the application cannot see the whole disk, with a button to change it.
ActionCard {
    id: root

    required property Ui ui

    symbol: "lock"
    title: ui.overview.accessTitle
    line: ui.overview.accessLine
    ground: Theme.lavender
    ink: Theme.lavenderInk

    SecondaryButtonStyle {
        text: Words.openSettings
        onClicked: root.ui.overview.openAccessSettings()
    }
}
