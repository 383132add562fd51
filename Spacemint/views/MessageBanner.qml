import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// What happened, until it is dismissed.
Rectangle {
    id: root

    property string text
    /// What its button says; without one there is no button.
    property string action

    signal performed
    signal dismissed

    implicitHeight: row.implicitHeight + 16
    radius: 10
    color: Theme.lavender
    border.width: 1
    border.color: Theme.lavenderBorder
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 6
        spacing: 8

        Label {
            Layout.fillWidth: true
            text: root.text
            size: 12
            wrapMode: Text.Wrap
        }
        SecondaryButtonStyle {
            visible: root.action
            text: root.action
            onClicked: root.performed()
        }
        IconButton {
            symbol: "xmark"
            help: "Dismiss"
            size: 13
            onClicked: root.dismissed()
        }
    }
}
