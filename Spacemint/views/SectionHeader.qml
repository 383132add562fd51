import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// The title of a section, and its controls at the other end of the line.
GridLayout {
    id: root

    property alias title: label.title
    default property alias trailing: end.data

    // With large letters the controls are below the title.
    readonly property bool isNarrow: end.implicitWidth > 0 && label.implicitWidth + columnSpacing + end.implicitWidth > width

    Layout.fillWidth: true
    columns: isNarrow ? 1 : 2
    columnSpacing: 10
    rowSpacing: 4

    SectionLabel {
        id: label

        Layout.fillWidth: true
        wrapMode: Text.Wrap
    }
    RowLayout {
        id: end

        Layout.fillWidth: false
        Layout.maximumWidth: root.width
        spacing: 6
    }
}
