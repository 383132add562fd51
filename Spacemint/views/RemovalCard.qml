import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// Something large that can be removed, such as the Trash or an old backup.
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
    /// The title of the button that shows the item in the file manager.
    property string revealTitle

    line: subtitle

    PrimaryButtonStyle {
        // As high as the secondary button beside it.
        size: 12
        radius: 7
        horizontalPadding: 11
        verticalPadding: 6
        enabled: !root.isBusy
        text: root.isBusy ? root.busyTitle : root.buttonTitle
        onClicked: root.rows.pressButton(root.rowId)
    }
    SecondaryButtonStyle {
        text: root.revealTitle
        onClicked: root.rows.reveal(root.rowId)
    }
}
