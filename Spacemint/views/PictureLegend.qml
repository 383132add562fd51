pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// What the colours of a picture mean, and which thing is under the pointer or selected. Where there is no room for
/// both, the thing under the pointer takes the place of the legend.
Item {
    id: root

    required property Explorer explorer
    /// Only what came has a colour, and only the thing under the pointer is named.
    property bool isBrief: false
    readonly property bool fitsBoth: !isBrief && legend.implicitWidth + 14 + thing.implicitWidth <= width
    readonly property bool showsThing: explorer.aboutName && (fitsBoth || explorer.isPointing)

    /// With large letters the figures about a thing are fewer.
    readonly property bool isNarrow: isBrief && width < Theme.scaled(370)

    // The same with and without a thing, so that nothing moves under the pointer.
    implicitHeight: Math.max(Theme.scaled(16), legend.implicitHeight)

    RowLayout {
        id: legend

        anchors.left: parent.left
        width: Math.min(implicitWidth + 1, parent.width)
        height: parent.height
        visible: root.fitsBoth || !root.showsThing
        spacing: 14

        Repeater {
            model: {
                if (root.explorer.colouring === Explorer.Age && (root.explorer.canCompare || !root.isBrief))
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
                    wrapMode: Text.Wrap
                }
            }
        }
    }
    RowLayout {
        id: thing

        anchors.left: root.fitsBoth ? undefined : parent.left
        anchors.right: root.fitsBoth ? parent.right : undefined
        width: Math.min(implicitWidth + 1, parent.width)
        height: parent.height
        visible: root.showsThing
        spacing: 6

        Label {
            id: aboutName

            Layout.fillWidth: true
            text: root.explorer.aboutName
            size: 11
            weight: Font.DemiBold
            elide: Text.ElideMiddle
        }
        Label {
            // The name is cut short before the figures, but not to nothing.
            Layout.maximumWidth: root.width - 6 - Math.min(aboutName.implicitWidth, Theme.scaled(80))
            text: root.isNarrow ? root.explorer.aboutBriefly : root.explorer.aboutDetail
            size: 11
            color: Theme.secondary
            elide: Text.ElideRight
        }
    }
}
