import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

ColumnLayout {
    spacing: 16

    Card {
        Layout.preferredWidth: 400

        SectionLabel {
            title: "What grew"
        }
        Label {
            Layout.fillWidth: true
            text: "Since Monday, this is where new space went."
            color: Theme.secondary
            wrapMode: Text.Wrap
        }
        RowDivider {}
        Label {
            text: "Downloads"
        }
    }
    Card {
        Layout.preferredWidth: 400
        fill: Theme.warningFill
        border.color: Theme.warningBorder

        RowLayout {
            spacing: 8

            Symbol {
                symbol: "exclamationmark.triangle.fill"
                color: Theme.warning
            }
            Label {
                Layout.fillWidth: true
                text: "Space is running low."
            }
        }
    }
}
