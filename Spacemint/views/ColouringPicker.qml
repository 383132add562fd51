import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// What the colours of the map mean.
SegmentedPicker {
    id: root

    required property Explorer explorer

    model: explorer.colourings
    currentIndex: explorer.colouring
    enabled: explorer.canCompare
    Accessible.name: Words.colours
    onActivated: index => explorer.colouring = index
}
