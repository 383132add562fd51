import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// Where what a suggestion speaks of lies.
RowList {
    required property SuggestionRow suggestion

    rows: suggestion.parts
    name: suggestion.title
    hasChevrons: true
    maximumHeight: Theme.scaled(400)
}
