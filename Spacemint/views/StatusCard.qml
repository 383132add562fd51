import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// A card in place of a list that is loading, has failed or is unavailable.
Card {
    id: root

    property string text
    property bool busy: false

    Layout.fillWidth: true
    visible: text
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    RowLayout {
        spacing: 10

        Spinner {
            visible: root.busy
            what: Words.working
            size: 14
        }
        Label {
            Layout.fillWidth: true
            text: root.text
            size: 12
            color: Theme.secondary
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
