import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// An old backup of a phone or tablet.
ActionCard {
    id: root

    required property ItemRows rows
    required property int rowId
    required property string subtitle
    required property string buttonTitle
    required property string busyTitle
    required property bool isBusy

    line: subtitle

    PrimaryButtonStyle {
        enabled: !root.isBusy
        text: root.isBusy ? root.busyTitle : root.buttonTitle
        onClicked: root.rows.pressButton(root.rowId)
    }
    SecondaryButtonStyle {
        text: ItemText.showInFinder
        onClicked: root.rows.reveal(root.rowId)
    }
}
