pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// What the colours of a picture mean, and which thing is under the pointer or selected.
RowLayout {
    id: root

    required property Explorer explorer
    /// Shows the thing in place of the legend.
    property bool isBrief: false
    readonly property bool showsThing: explorer.aboutName
    readonly property bool showsLegend: !isBrief || !showsThing

    spacing: 14
    implicitHeight: Theme.scaled(16)

    Repeater {
        model: {
            if (!root.showsLegend)
                return [];
            if (root.explorer.colouring === Explorer.Age && root.explorer.canCompare)
                return root.explorer.ages.map((text, i) => ({
                            text: text,
                            color: [Theme.age1, Theme.age2, Theme.age3, Theme.age4][i],
                            edge: i ? "transparent" : Theme.tertiary
                        }));
            const came = {
                text: root.explorer.legend,
                color: root.explorer.canCompare ? Theme.grown : "transparent",
                edge: root.explorer.canCompare ? Theme.amberInk : "transparent"
            };
            const shrank = {
                text: root.explorer.shrankLegend,
                color: Theme.shrunk,
                edge: Theme.teal
            };
            return root.isBrief || !root.explorer.canCompare ? [came] : [came, shrank];
        }

        RowLayout {
            id: entry

            required property var modelData

            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth + 1
            spacing: 6

            Rectangle {
                visible: entry.modelData.color.a > 0
                implicitWidth: 10
                implicitHeight: 10
                radius: 2
                color: entry.modelData.color
                border.width: 1
                border.color: entry.modelData.edge
            }
            Label {
                Layout.fillWidth: true
                text: entry.modelData.text
                size: 11
                color: Theme.secondary
                elide: Text.ElideRight
            }
        }
    }
    Item {
        Layout.fillWidth: true
        visible: !root.isBrief
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.maximumWidth: implicitWidth + 1
        Layout.minimumWidth: Math.min(implicitWidth, root.width / 2)
        visible: root.showsThing
        spacing: 6

        Label {
            Layout.fillWidth: true
            text: root.explorer.aboutName
            size: 11
            weight: Font.DemiBold
            elide: Text.ElideMiddle
        }
        Label {
            text: root.explorer.aboutDetail
            size: 11
            color: Theme.secondary
        }
    }
}
