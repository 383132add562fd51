import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// What can be done with the marked rows of a list; shown while there are any.
Rectangle {
    id: root

    required property ItemRows rows

    implicitHeight: line.implicitHeight + 20
    visible: rows.markedCount > 0
    color: Theme.lavender
    Accessible.role: Accessible.Grouping
    Accessible.name: rows.markedText

    RowLayout {
        id: line

        anchors {
            left: parent.left
            right: parent.right
            leftMargin: 20
            rightMargin: 14
            verticalCenter: parent.verticalCenter
        }
        spacing: 8

        Label {
            Layout.fillWidth: true
            text: root.rows.markedText
            weight: Font.Medium
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
        SecondaryButtonStyle {
            text: Words.removeMarked
            onClicked: root.rows.removeMarked()
        }
        IconButton {
            symbol: "xmark"
            size: 13
            help: Words.unmark
            onClicked: root.rows.unmarkAll()
        }
    }
}
