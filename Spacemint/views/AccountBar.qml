import QtQuick
import Spacemint.UiKit

/// A strip as long as the capacity of a volume: in files, not in files (hatched), elsewhere, free (empty).
Item {
    id: root

    /// The parts of the capacity in files, not in files, and elsewhere.
    required property list<real> shares

    readonly property real gap: 2
    readonly property real files: widthOf(0)
    readonly property real known: widthOf(1)
    readonly property real elsewhere: widthOf(2)
    readonly property real knownEnd: files + (known ? gap + known : 0)
    readonly property real elsewhereEnd: knownEnd + (elsewhere ? gap + elsewhere : 0)

    /// The x of a part at this distance from the leading edge.
    function placeOf(distance: real, part: Item): real {
        return LayoutMirroring.enabled ? width - distance - part.width : distance;
    }

    function widthOf(index: int): real {
        const share = shares[index] ?? 0;
        return share > 0 ? Math.max(4, share * width) : 0;
    }

    implicitHeight: 8
    implicitWidth: 300
    Accessible.ignored: true

    Rectangle {
        x: root.placeOf(0, this)
        width: root.files
        height: root.height
        radius: 2
        color: Theme.tertiary
    }
    Rectangle {
        x: root.placeOf(root.files + root.gap, this)
        width: root.known
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
            sourceSize {
                width: 7
                height: 7
            }
            fillMode: Image.Tile
            horizontalAlignment: Image.AlignLeft
            verticalAlignment: Image.AlignTop
            color: Theme.secondary
        }
    }
    Rectangle {
        x: root.placeOf(root.knownEnd + root.gap, this)
        width: root.elsewhere
        height: root.height
        visible: width > 0
        radius: 2
        color: Theme.track
    }
    Rectangle {
        x: root.placeOf(root.elsewhereEnd + root.gap, this)
        width: Math.max(0, root.width - root.elsewhereEnd - root.gap)
        height: root.height
        radius: 2
        color: "transparent"
        border.width: 1
        border.color: Theme.border
    }
}
