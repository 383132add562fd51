pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

Column {
    id: root

    required property var histories
    required property list<string> titles
    /// The second line.
    property Item focused: null

    spacing: 24
    width: 420

    Repeater {
        model: root.histories.length

        Column {
            id: one

            required property int index

            width: 420
            spacing: 10

            Label {
                text: root.titles[one.index]
                size: 11
                color: Theme.secondary
            }
            FreeSpaceLine {
                width: 420
                history: root.histories[one.index]
                Component.onCompleted: {
                    if (one.index === 1)
                        root.focused = this;
                }
            }
        }
    }
}
