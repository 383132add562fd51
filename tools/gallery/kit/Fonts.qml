pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit

Column {
    spacing: 12

    Label {
        text: "Settings"
        font: Theme.title
    }
    Label {
        text: "17.34 GB"
        font: Theme.display(40, text)
    }
    Label {
        text: "used of 256 GB, Ünlüler, Łódź"
        font: Theme.display(20, text)
    }
    Repeater {
        model: [10, 11, 12, 13, 15, 17]

        Row {
            id: row

            required property int modelData

            spacing: 16

            Repeater {
                model: [Font.Normal, Font.Medium, Font.DemiBold, Font.Bold]

                Label {
                    required property int modelData

                    text: `${row.modelData} Downloads 1,234.5 MB`
                    size: row.modelData
                    weight: modelData
                }
            }
        }
    }
}
