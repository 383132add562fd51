pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The data that Docker keeps but does not use.
ColumnLayout {
    id: root

    required property Ui ui

    readonly property ItemRows docker: ui.developer.docker

    visible: docker.isShown
    spacing: 10

    SectionHeader {
        title: Words.docker
    }
    StatusCard {
        text: root.docker.text
        busy: root.docker.isWaiting
    }
    Card {
        Layout.fillWidth: true
        visible: usage.count > 0
        padding: 4
        spacing: 0

        Repeater {
            id: usage

            model: root.docker

            ItemRow {
                Layout.fillWidth: true
                rows: root.docker
            }
        }
        Repeater {
            model: root.ui.developer.dockerPrune

            // Positioners, for a layout keeps the height that a text has before it wraps.
            Column {
                id: prune

                required property int rowId
                required property string title
                required property string buttonTitle
                required property bool isBusy

                Layout.fillWidth: true
                spacing: 4

                topPadding: 4

                RowDivider {
                    width: prune.width
                }
                Item {
                    width: prune.width
                    implicitHeight: Math.max(line.implicitHeight, button.implicitHeight) + 20

                    Label {
                        id: line

                        anchors.left: parent.left
                        anchors.right: spinner.left
                        anchors.margins: 10
                        anchors.verticalCenter: parent.verticalCenter
                        text: prune.title
                        size: 12
                        color: Theme.secondary
                        wrapMode: Text.Wrap
                    }
                    Spinner {
                        id: spinner

                        anchors.right: button.left
                        anchors.rightMargin: prune.isBusy ? 10 : 0
                        anchors.verticalCenter: parent.verticalCenter
                        visible: prune.isBusy
                        what: Words.working
                        width: prune.isBusy ? size : 0
                        size: 14
                    }
                    SecondaryButtonStyle {
                        id: button

                        anchors.right: parent.right
                        anchors.rightMargin: 10
                        anchors.verticalCenter: parent.verticalCenter
                        enabled: !prune.isBusy
                        text: prune.buttonTitle
                        Accessible.description: prune.title
                        onClicked: root.ui.developer.dockerPrune.pressButton(prune.rowId)
                    }
                }
            }
        }
    }
}
