import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// What the scan is that the user opened from a file, and the way back to the scan of this computer.
Rectangle {
    id: root

    required property ScanSource source

    // With large letters the button is below the text.
    readonly property bool isNarrow: grid.width - button.implicitWidth < Theme.scaled(220)

    visible: !source.isOfHere
    implicitHeight: grid.implicitHeight + 24
    radius: 10
    color: Theme.lavender
    border.width: 1
    border.color: Theme.lavenderBorder

    GridLayout {
        id: grid

        x: 14
        y: 12
        // As wide as the card will be: a layout sizes it only once it is visible, and then ignores that the
        // text needs fewer lines.
        width: root.parent ? root.parent.width - root.Layout.leftMargin - root.Layout.rightMargin - 26 : 0
        columnSpacing: 12
        rowSpacing: 4

        SectionLabel {
            Layout.row: 0
            Layout.column: 0
            Layout.columnSpan: 2
            Layout.fillWidth: true
            title: root.source.title
            size: 15
            wrapMode: Text.Wrap
        }
        ColumnLayout {
            Layout.row: 1
            Layout.column: 0
            Layout.fillWidth: true
            spacing: 3

            Label {
                Layout.fillWidth: true
                text: root.source.contents
                size: 12
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            }
            Label {
                Layout.fillWidth: true
                text: Words.onlyShown
                size: 12
                color: Theme.secondary
                wrapMode: Text.Wrap
            }
        }
        SecondaryButtonStyle {
            id: button

            Layout.row: root.isNarrow ? 2 : 1
            Layout.column: root.isNarrow ? 0 : 1
            Layout.alignment: Qt.AlignBottom
            Layout.topMargin: root.isNarrow ? 6 : 0
            text: Words.backToHere
            onClicked: root.source.close()
        }
    }
}
