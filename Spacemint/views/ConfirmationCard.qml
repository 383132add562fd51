import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// Asks before something is removed.
FocusScope {
    id: root

    required property Ui ui

    focus: true
    // The card of a question stays its card until it is gone, whatever is asked next.
    readonly property var asked: ui.confirmation.uuid

    Accessible.role: Accessible.Dialog
    Accessible.name: ui.confirmation.title
    Keys.onEscapePressed: ui.confirmation.dismiss()

    Rectangle {
        anchors.fill: parent
        color: Theme.backdrop

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onClicked: root.ui.confirmation.dismiss()
            onWheel: wheel => wheel.accepted = true
        }
    }
    Rectangle {
        id: card

        anchors.centerIn: parent
        width: Math.min(parent.width - 48, Theme.scaled(380))
        height: Math.min(parent.height - 48, column.implicitHeight + 40)
        radius: 14
        color: Theme.card
        border.width: 1
        border.color: Theme.border

        MouseArea {
            anchors.fill: parent
        }
        ColumnLayout {
            id: column

            anchors.fill: parent
            anchors.margins: 20
            spacing: 8

            Label {
                Layout.fillWidth: true
                text: root.ui.confirmation.title
                size: 16
                weight: Font.DemiBold
                wrapMode: Text.Wrap
            }
            Label {
                Layout.fillWidth: true
                Layout.topMargin: 4
                text: root.ui.confirmation.subject
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                maximumLineCount: 3
                elide: Text.ElideRight
            }
            Label {
                Layout.fillWidth: true
                visible: text
                text: root.ui.confirmation.detail
                size: 11.5
                color: Theme.secondary
                elide: Text.ElideMiddle
            }
            Label {
                Layout.fillWidth: true
                text: root.ui.confirmation.note
                size: 12
                color: Theme.secondary
                wrapMode: Text.Wrap
            }
            RowLayout {
                Layout.topMargin: 10
                spacing: 8

                Item {
                    Layout.fillWidth: true
                }
                SecondaryButtonStyle {
                    id: cancel

                    focus: true
                    text: "Cancel"
                    onClicked: root.ui.confirmation.dismiss()
                }
                PrimaryButtonStyle {
                    text: root.ui.confirmation.actionTitle
                    onClicked: root.ui.confirmation.perform(root.asked)
                }
            }
        }
    }
    // Return is for the action, unless the person went to Cancel by the keyboard.
    Shortcut {
        sequences: ["Return", "Enter"]
        enabled: !cancel.visualFocus
        onActivated: root.ui.confirmation.perform(root.asked)
    }
}
