import QtQuick
import Spacemint.UiKit

/// A strip as long as the capacity of a volume: in files, not in files (hatched), elsewhere, free (empty).
Item {
    id: root

    /// The parts of the capacity in files, not in files, and elsewhere.
    required property list<real> shares

    readonly property real gap: 2
    readonly property list<real> widths: shares.map(share => share > 0 ? Math.max(4, share * width) : 0)
    readonly property real filesEnd: widths[0]
    readonly property real knownEnd: filesEnd + (widths[1] ? gap + widths[1] : 0)
    readonly property real elsewhereEnd: knownEnd + (widths[2] ? gap + widths[2] : 0)

    implicitHeight: 8
    implicitWidth: 300
    Accessible.ignored: true

    Rectangle {
        width: root.filesEnd
        height: root.height
        radius: 2
        color: Theme.tertiary
    }
    Rectangle {
        x: root.filesEnd + root.gap
        width: root.widths[1]
        height: root.height
        visible: width > 0
        radius: 2
        color: "transparent"
        border.width: 1
        border.color: Theme.secondary

        Symbol {
            anchors.fill: parent
            anchors.margins: 1
            symbol: "hatch"
            sourceSize: Qt.size(7, 7)
            fillMode: Image.Tile
            horizontalAlignment: Image.AlignLeft
            verticalAlignment: Image.AlignTop
            color: Theme.secondary
        }
    }
    Rectangle {
        x: root.knownEnd + root.gap
        width: root.widths[2]
        height: root.height
        visible: width > 0
        radius: 2
        color: Theme.track
    }
    Rectangle {
        x: root.elsewhereEnd + root.gap
        width: Math.max(0, root.width - x)
        height: root.height
        radius: 2
        color: "transparent"
        border.width: 1
        border.color: Theme.border
    }
}
