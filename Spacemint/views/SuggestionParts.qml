import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The locations of a suggestion.
RowList {
    required property SuggestionRow suggestion

    rows: suggestion.parts
    name: suggestion.title
    maximumHeight: Theme.scaled(400)
}
