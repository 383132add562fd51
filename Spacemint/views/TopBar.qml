import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The name of the program and the button to the settings.
RowLayout {
    id: root

    required property Ui ui

    Wordmark {
        Layout.leftMargin: 20
        Layout.topMargin: 14
        Layout.bottomMargin: 14
    }
    Item {
        Layout.fillWidth: true
    }
    IconButton {
        Layout.rightMargin: 14
        symbol: "gearshape"
        help: Words.settings
        onClicked: root.ui.page.showingSettings = true
    }
}
