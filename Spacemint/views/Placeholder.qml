import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// The text in place of an empty list.
Label {
    Layout.fillWidth: true
    visible: text
    color: Theme.secondary
    size: 12
    wrapMode: Text.Wrap
    topPadding: 4
    bottomPadding: 4
}
