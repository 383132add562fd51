import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

ColumnLayout {
    property Item pointer: hovered
    property Item focused: focusedRow

    spacing: 16

    component Row: RowDisclosureStyle {
        id: row

        property string size: "1.2 GB"

        Symbol {
            symbol: "folder"
            color: Theme.secondary
        }
        Label {
            Layout.fillWidth: true
            text: row.text
        }
        Label {
            text: row.size
            color: Theme.secondary
        }
    }

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
        Row {
            text: "Downloads"
        }
        RowDivider {}
        Row {
            id: hovered

            text: "Pictures"
            expanded: true
        }
        RowDivider {}
        Row {
            id: focusedRow

            text: "Movies"
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
            PillButtonStyle {
                text: "Clean up"
            }
        }
    }
    Card {
        Layout.preferredWidth: 400

        RowLayout {
            spacing: 16

            Label {
                text: "Free"
            }
            VerticalDivider {}
            Label {
                text: "Used"
            }
        }
    }
}
