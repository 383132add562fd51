import QtQuick
import Spacemint.UiKit

/// All of the interface, in the panel and in the window.
Rectangle {
    id: root

    required property Ui ui
    /// Whether it is in the window, and not in the panel.
    property bool windowed: false

    implicitWidth: 460
    implicitHeight: 700
    color: Theme.border
}
