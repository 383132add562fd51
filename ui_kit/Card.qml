import QtQuick
import QtQuick.Layouts

/// A surface for things that belong together; its children are in a ColumnLayout.
Rectangle {
    id: root

    property color fill: Theme.card
    property real padding: 14
    property alias spacing: column.spacing
    default property alias content: column.data

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    radius: 12
    color: fill
    border.width: 1
    border.color: Theme.border
    Accessible.role: Accessible.Grouping
    Accessible.ignored: !Accessible.name

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: root.padding
        spacing: 8
    }
}
