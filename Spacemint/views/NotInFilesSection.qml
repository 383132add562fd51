pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The section with the space that no file takes. A button opens it where there is little of it.
ColumnLayout {
    id: root

    required property NotInFiles account
    property bool isOpened: false

    visible: account.isKnown
    spacing: 10

    QuietButtonStyle {
        Layout.alignment: Qt.AlignHCenter
        visible: !content.visible
        text: "Show what is not in files"
        onClicked: {
            root.isOpened = true;
            root.account.refresh();
        }
    }
    ColumnLayout {
        id: content

        visible: root.account.matters || root.isOpened
        spacing: 10

        SectionHeader {
            title: "Not in files"

            Label {
                visible: text
                text: root.account.size
                color: Theme.secondary
            }
        }
        Label {
            Layout.fillWidth: true
            visible: text
            text: root.account.sum
            size: 12
            color: Theme.secondary
            wrapMode: Text.Wrap
        }
        AccountBar {
            Layout.fillWidth: true
            visible: root.account.shares.length > 0
            shares: root.account.shares
        }
        StatusCard {
            text: root.account.rows.text
            busy: root.account.rows.isWaiting
        }
        Card {
            Layout.fillWidth: true
            visible: lines.count > 0
            padding: 4
            spacing: 0

            Repeater {
                id: lines

                model: root.account.rows

                SuggestionRow {
                    rows: root.account.rows
                    partsView: "AccountParts.qml"
                }
            }
        }
    }
}
