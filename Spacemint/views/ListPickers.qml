import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The order of the list, and what the colours of the map beside it mean.
Row {
    id: root

    required property Explorer explorer

    spacing: 8

    SegmentedPicker {
        model: root.explorer.orders
        currentIndex: root.explorer.order
        Accessible.name: Words.order
        onActivated: index => root.explorer.order = index
    }
    SegmentedPicker {
        model: root.explorer.colourings
        currentIndex: root.explorer.colouring
        enabled: root.explorer.canCompare
        Accessible.name: Words.colours
        onActivated: index => root.explorer.colouring = index
    }
}
