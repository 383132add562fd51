pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.Services

ColumnLayout {
    id: root

    /// The texts of each card, as a map.
    required property list<var> notices

    spacing: 16

    Repeater {
        model: root.notices

        NoticeCard {
            required property var modelData

            Layout.preferredWidth: 420
            title: modelData.title
            body: modelData.body
            primary: modelData.primary
            secondary: modelData.secondary
            closeHelp: modelData.closeHelp
        }
    }
}
