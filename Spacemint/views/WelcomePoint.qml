import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// A symbol with a title and a line beside it.
RowLayout {
    id: root

    property string symbol
    property string title
    property string line
    property color tint: Theme.lavenderInk

    Layout.fillWidth: true
    spacing: 14

    Symbol {
        Layout.alignment: Qt.AlignTop
        Layout.topMargin: 2
        symbol: root.symbol
        size: 22
        color: root.tint
    }
    ColumnLayout {
        Layout.fillWidth: true
        spacing: 2

        Label {
            Layout.fillWidth: true
            text: root.title
            size: 14
            weight: Font.DemiBold
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            text: root.line
            size: 12.5
            color: Theme.secondary
            wrapMode: Text.Wrap
        }
    }
}
