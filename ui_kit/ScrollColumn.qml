import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

/// A column that scrolls where it is higher than there is room. Its children are in a ColumnLayout.
Flickable {
    id: root

    property real padding: 0
    property alias spacing: column.spacing
    default property alias content: column.data

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    contentWidth: width
    contentHeight: column.implicitHeight + 2 * padding
    boundsBehavior: Flickable.StopAtBounds
    flickableDirection: Flickable.VerticalFlick
    clip: true

    ColumnLayout {
        id: column

        x: root.padding
        y: root.padding
        width: root.width - 2 * root.padding
        spacing: 8
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar

        implicitWidth: 10
        padding: 2
        minimumSize: 0.08
        visible: size < 1

        contentItem: Rectangle {
            implicitWidth: 6
            radius: 3
            color: Theme.tertiary
            opacity: bar.pressed ? 0.9 : bar.hovered || bar.active ? 0.6 : 0.25

            Behavior on opacity {
                NumberAnimation {
                    duration: Theme.duration(150)
                }
            }
        }
    }
}
