pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// A strip with the share of each kind of file, and a button for each kind that limits the list to it.
Column {
    id: root

    required property Files files

    readonly property list<color> colours: [Theme.teal, Theme.lavenderInk, Theme.amber, Theme.amberInk, Theme.tertiary]

    function colourOf(index: int): color {
        return colours[index % colours.length];
    }

    /// Kinds beyond the number of colours have the same colours, but paler.
    function strengthOf(index: int): real {
        return index < colours.length ? 1 : 0.45;
    }

    spacing: 8

    Rectangle {
        width: root.width
        height: 8
        radius: 2
        color: Theme.track
        clip: true

        Row {
            id: segments

            anchors.left: parent.left
            spacing: 1

            Repeater {
                model: root.files.kindShares

                Rectangle {
                    id: segment

                    required property double modelData
                    required property int index

                    width: Math.max(2, modelData * (root.width - segments.spacing * (root.files.kindShares.length - 1)))
                    height: 8
                    radius: 2
                    color: root.colourOf(index)
                    opacity: root.strengthOf(index) * (root.files.kind < 0 || root.files.kind === index ? 1 : 0.3)

                    TapHandler {
                        margin: 4
                        onTapped: root.files.chooseKind(segment.index)
                    }
                }
            }
        }
    }
    Flow {
        width: root.width
        spacing: 6

        Repeater {
            model: root.files.kinds

            KindButton {
                required property string modelData
                required property int index

                title: modelData
                sizeText: root.files.kindSizes[index] ?? ""
                colour: root.colourOf(index)
                strength: root.strengthOf(index)
                checked: root.files.kind === index
                onClicked: root.files.chooseKind(index)
            }
        }
    }
}
