import QtQuick
import QtQuick.Layouts

/// A column with a card for each item.
ColumnLayout {
    property alias items: repeater.model
    property alias row: repeater.delegate

    visible: repeater.count > 0
    spacing: 10

    Repeater {
        id: repeater
    }
}
