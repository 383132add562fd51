import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// The title of a setting, and its control at the other end of the line.
GridLayout {
    id: root

    property string title
    default property alias control: place.data
    // With large letters the control is below the title.
    readonly property bool isNarrow: label.implicitWidth + columnSpacing + place.implicitWidth > width

    Layout.fillWidth: true
    columns: isNarrow ? 1 : 2
    columnSpacing: 12
    rowSpacing: 4

    Label {
        id: label

        Layout.fillWidth: true
        text: root.title
        wrapMode: Text.Wrap
    }
    RowLayout {
        id: place

        Layout.fillWidth: false
        Layout.alignment: Qt.AlignRight
        Layout.minimumHeight: Theme.scaled(26)
        spacing: 8
    }
}
