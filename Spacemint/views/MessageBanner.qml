import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// A message about what happened, with a button to dismiss it.
Rectangle {
    id: root

    property string text
    /// The title of the button; empty for no button.
    property string action

    signal performed
    signal dismissed

    // With large letters the button is below the text.
    readonly property bool isNarrow: action && grid.width - button.implicitWidth - close.implicitWidth < Theme.scaled(180)

    implicitHeight: grid.implicitHeight + 16
    radius: 10
    color: Theme.lavender
    border.width: 1
    border.color: Theme.lavenderBorder
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    GridLayout {
        id: grid

        anchors.fill: parent
        anchors.margins: 8
        anchors.leftMargin: 12
        anchors.rightMargin: 6
        columnSpacing: 8
        rowSpacing: 4

        Label {
            Layout.row: 0
            Layout.column: 0
            Layout.fillWidth: true
            text: root.text
            size: 12
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            maximumLineCount: 8
            elide: Text.ElideRight
        }
        SecondaryButtonStyle {
            id: button

            Layout.row: root.isNarrow ? 1 : 0
            Layout.column: root.isNarrow ? 0 : 1
            visible: root.action
            text: root.action
            onClicked: root.performed()
        }
        IconButton {
            id: close

            Layout.row: 0
            Layout.column: 2
            symbol: "xmark"
            help: Words.dismiss
            size: 13
            onClicked: root.dismissed()
        }
    }
}
