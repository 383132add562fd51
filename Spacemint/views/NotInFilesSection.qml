pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The section with the space that no file takes. A button opens it where there is little of it. A positioner: each
/// layout around a text that wraps is one more round until the page has its height.
Column {
    id: root

    required property NotInFiles account
    property bool isOpened: false
    readonly property bool isShown: account.matters || isOpened

    visible: account.isKnown
    spacing: 10

    QuietButtonStyle {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: !root.isShown
        text: Words.showNotInFiles
        onClicked: {
            root.isOpened = true;
            root.account.refresh();
        }
    }
    SectionHeader {
        width: parent.width
        visible: root.isShown
        title: Words.notInFiles

        Label {
            visible: text
            text: root.account.size
            color: Theme.secondary
        }
    }
    Label {
        width: parent.width
        visible: root.isShown && text
        text: root.account.sum
        size: 12
        color: Theme.secondary
        wrapMode: Text.Wrap
    }
    AccountBar {
        width: parent.width
        visible: root.isShown && root.account.shares.length > 0
        shares: root.account.shares
    }
    StatusCard {
        width: parent.width
        visible: root.isShown && text
        text: root.account.rows.text
        busy: root.account.rows.isWaiting
    }
    Card {
        width: parent.width
        visible: root.isShown && lines.count > 0
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
