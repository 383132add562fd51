import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// A card with the rows of a section, and further items below them.
Card {
    id: root

    property alias rows: list.rows
    property alias name: list.name
    default property alias below: end.data

    Layout.fillWidth: true
    visible: list.count > 0
    padding: 4
    spacing: 0

    RowList {
        id: list

        Layout.fillWidth: true
        wrapsSubtitles: true
        maximumHeight: Theme.scaled(560)
    }
    ColumnLayout {
        id: end

        spacing: 0
    }
}
