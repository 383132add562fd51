import QtQuick
import QtQuick.Layouts

/// A line between two things that stand side by side.
Rectangle {
    Layout.fillHeight: true
    implicitWidth: 1
    color: Theme.border
    Accessible.role: Accessible.Separator
}
