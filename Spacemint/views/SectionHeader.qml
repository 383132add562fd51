import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// The title over a section, and what stands beside it at the right.
RowLayout {
    property alias title: label.title
    default property alias trailing: end.data

    Layout.fillWidth: true
    spacing: 10

    SectionLabel {
        id: label

        Layout.fillWidth: true
        elide: Text.ElideRight
    }
    RowLayout {
        id: end

        spacing: 6
    }
}
