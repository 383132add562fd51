pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit

Grid {
    id: root

    required property list<string> names

    columns: 5
    rowSpacing: 12
    columnSpacing: 8

    Repeater {
        model: root.names

        Row {
            required property string modelData

            spacing: 8
            width: Theme.scaled(170)

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                symbol: parent.modelData
            }
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                symbol: parent.modelData
                size: 22
                color: Theme.teal
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                width: Theme.scaled(170) - 54
                text: parent.modelData
                size: 10
                elide: Text.ElideRight
                color: Theme.secondary
            }
        }
    }
}
