import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// How it stands with something that cannot be listed now.
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
            size: 14
        }
        Label {
            Layout.fillWidth: true
            text: root.text
            textFormat: Text.PlainText
            size: 12
            color: Theme.secondary
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
