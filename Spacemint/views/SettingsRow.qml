import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// What a setting is called, and its control at the other end of the line.
RowLayout {
    id: root

    property string title
    default property alias control: place.data

    Layout.fillWidth: true
    spacing: 12

    Label {
        Layout.fillWidth: true
        text: root.title
        wrapMode: Text.Wrap
    }
    RowLayout {
        id: place

        Layout.fillWidth: false
        Layout.minimumHeight: Theme.scaled(26)
        spacing: 8
    }
}
