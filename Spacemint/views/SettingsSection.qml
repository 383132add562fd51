import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// A group of settings with a title and a footnote.
ColumnLayout {
    id: root

    property string title
    property string footnote
    default property alias rows: card.content

    Layout.fillWidth: true
    Layout.topMargin: 6
    spacing: 7

    SectionLabel {
        title: root.title
    }
    Card {
        id: card

        Layout.fillWidth: true
        spacing: 10
    }
    Label {
        Layout.fillWidth: true
        visible: text
        text: root.footnote
        size: 11
        color: Theme.secondary
        wrapMode: Text.Wrap
    }
}
