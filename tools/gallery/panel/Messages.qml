pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.Views

ColumnLayout {
    id: root

    required property list<string> texts
    /// The button of the second message.
    required property string action

    spacing: 16

    Repeater {
        model: root.texts

        MessageBanner {
            required property int index
            required property string modelData

            Layout.preferredWidth: 420
            text: modelData
            action: index === 1 ? root.action : ""
        }
    }
}
