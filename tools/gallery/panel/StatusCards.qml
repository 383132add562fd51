pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.Views

ColumnLayout {
    id: root

    required property list<string> texts
    required property string title
    required property string line

    spacing: 16

    Repeater {
        model: root.texts

        StatusCard {
            required property int index
            required property string modelData

            Layout.preferredWidth: 420
            text: modelData
            busy: index === 0
        }
    }
    ActionCard {
        Layout.preferredWidth: 420
        symbol: "lock"
        title: root.title
        line: root.line
    }
}
