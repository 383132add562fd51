import QtQuick
import QtQuick.Templates as T

/// A line between two groups of MenuEntry.
T.MenuSeparator {
    implicitWidth: 1
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 8
    verticalPadding: 4
    contentItem: RowDivider {}
}
