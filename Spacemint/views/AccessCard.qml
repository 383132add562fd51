import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// Says that not all of the disk can be seen, and where to change that.
ActionCard {
    id: root

    required property Ui ui

    symbol: "lock"
    title: ui.overview.accessTitle
    line: ui.overview.accessLine
    ground: Theme.lavender
    ink: Theme.lavenderInk

    SecondaryButtonStyle {
        text: "Turn on"
        onClicked: root.ui.overview.openAccessSettings()
    }
}
