pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit

Grid {
    id: root

    required property list<string> names

    columns: 5
    spacing: 12

    Repeater {
        model: root.names

        Column {
            required property string modelData

            spacing: 4

            Rectangle {
                width: 110
                height: 48
                radius: 8
                color: Theme[parent.modelData]
                border.width: 1
                border.color: Theme.border
            }
            Label {
                text: parent.modelData
                size: 11
                color: Theme.secondary
            }
        }
    }
}
