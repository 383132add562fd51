import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// An old backup of a phone or tablet.
ActionCard {
    id: root

    required title
    required symbol
    required property ItemRows rows
    required property int rowId
    required property string subtitle
    required property string buttonTitle
    required property string busyTitle
    required property bool isBusy

    line: subtitle

    PrimaryButtonStyle {
        // As high as the other one beside it.
        size: 12
        radius: 7
        horizontalPadding: 11
        verticalPadding: 6
        enabled: !root.isBusy
        text: root.isBusy ? root.busyTitle : root.buttonTitle
        onClicked: root.rows.pressButton(root.rowId)
    }
    SecondaryButtonStyle {
        text: ItemText.showInFinder
        onClicked: root.rows.reveal(root.rowId)
    }
}
