import QtQuick
import QtQuick.Layouts

/// A horizontal line between two rows.
Rectangle {
    Layout.fillWidth: true
    implicitHeight: 1
    color: Theme.border
    Accessible.role: Accessible.Separator
}
