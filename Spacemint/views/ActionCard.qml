import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// A card with a symbol, a title, a line, and buttons below them.
Card {
    id: root

    property string symbol
    property string title
    property string line
    property alias ground: symbolGround.color
    property alias ink: symbolView.color
    default property alias buttons: end.data

    Layout.fillWidth: true
    Accessible.name: title
    Accessible.description: line

    RowLayout {
        spacing: 12

        Rectangle {
            id: symbolGround

            Layout.alignment: Qt.AlignTop
            implicitWidth: Theme.scaled(34)
            implicitHeight: implicitWidth
            radius: 9
            color: Theme.amberSoft

            Symbol {
                id: symbolView

                anchors.centerIn: parent
                symbol: root.symbol
                size: 18
                color: Theme.amberInk
            }
        }
        ColumnLayout {
            spacing: 3

            Label {
                Layout.fillWidth: true
                text: root.title
                weight: Font.DemiBold
                wrapMode: Text.Wrap
            }
            Label {
                Layout.fillWidth: true
                text: root.line
                size: 12
                color: Theme.secondary
                wrapMode: Text.Wrap
            }
            Flow {
                id: end

                Layout.fillWidth: true
                Layout.topMargin: 7
                spacing: 8
            }
        }
    }
}
