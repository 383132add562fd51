pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// What a line of an account consists of: programs, folders or volumes.
Column {
    id: root

    required property SuggestionRow suggestion

    bottomPadding: 4
    Accessible.role: Accessible.List
    Accessible.name: suggestion.title

    Repeater {
        model: root.suggestion.parts

        Item {
            id: row

            required property string title
            required property string subtitle
            required property string sizeText

            width: root.width
            height: Math.max(Theme.scaled(28), line.implicitHeight + 8)
            Accessible.role: Accessible.ListItem
            Accessible.name: Words.spoken([title, subtitle, sizeText])

            RowLayout {
                id: line

                anchors {
                    left: parent.left
                    right: parent.right
                    verticalCenter: parent.verticalCenter
                    leftMargin: 20
                    rightMargin: 10 + Theme.scaled(13) + 10
                }
                spacing: 5

                Label {
                    Layout.maximumWidth: implicitWidth + 1
                    Layout.fillWidth: true
                    text: row.title
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
                Label {
                    text: row.subtitle
                    size: 11
                    color: Theme.secondary
                    Accessible.ignored: true
                }
                Item {
                    Layout.fillWidth: true
                }
                Label {
                    text: row.sizeText
                    Accessible.ignored: true
                }
            }
        }
    }
}
