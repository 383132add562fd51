import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// A title, a short text, a button to close the card, and up to two buttons to answer.
Card {
    id: card

    property string title
    property string body
    /// The titles of the buttons. A button without a title is not shown.
    property string primary
    property string secondary
    /// The tool tip of the button that closes the card.
    property string closeHelp
    signal closed
    signal primaryChosen
    signal secondaryChosen

    padding: 16
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title
    Accessible.description: body

    RowLayout {
        Layout.fillWidth: true
        spacing: 8

        Label {
            Layout.fillWidth: true
            size: 14
            weight: Font.DemiBold
            text: card.title
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
        }
        IconButton {
            objectName: "close"
            Layout.alignment: Qt.AlignTop
            symbol: "xmark"
            size: 12
            help: card.closeHelp
            onClicked: card.closed()
        }
    }
    Label {
        Layout.fillWidth: true
        visible: text.length > 0
        color: Theme.secondary
        text: card.body
        wrapMode: Text.Wrap
        maximumLineCount: 12
        elide: Text.ElideRight
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: 4
        visible: card.primary.length > 0 || card.secondary.length > 0
        spacing: 8

        PrimaryButtonStyle {
            objectName: "primary"
            // Two buttons share the row.
            Layout.maximumWidth: card.secondary.length > 0 ? card.width / 2 : card.width - 2 * card.padding
            visible: card.primary.length > 0
            text: card.primary
            onClicked: card.primaryChosen()
        }
        SecondaryButtonStyle {
            objectName: "secondary"
            Layout.maximumWidth: card.width / 2
            visible: card.secondary.length > 0
            text: card.secondary
            onClicked: card.secondaryChosen()
        }
    }
}
