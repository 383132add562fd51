import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// What is said where there is nothing to show.
Label {
    Layout.fillWidth: true
    visible: text
    color: Theme.secondary
    size: 12
    wrapMode: Text.Wrap
    topPadding: 4
    bottomPadding: 4
}
