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
        title: "Unused Docker data"
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

            ColumnLayout {
                id: prune

                required property int rowId
                required property string title
                required property string buttonTitle
                required property bool isBusy

                Layout.fillWidth: true
                spacing: 4

                RowDivider {
                    Layout.fillWidth: true
                    Layout.topMargin: 4
                }
                RowLayout {
                    Layout.margins: 10
                    spacing: 10

                    Label {
                        Layout.fillWidth: true
                        text: prune.title
                        size: 12
                        color: Theme.secondary
                        wrapMode: Text.Wrap
                    }
                    Spinner {
                        visible: prune.isBusy
                        size: 14
                    }
                    SecondaryButtonStyle {
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
