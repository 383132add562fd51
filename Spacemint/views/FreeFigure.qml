import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The free space as a large figure.
Row {
    id: root

    required property Ui ui
    property real size: 44
    readonly property color levelColor: [Theme.ink, Theme.warning, Theme.critical][ui.summary.level]
    readonly property real textBaseline: figure.baselineOffset

    Accessible.role: Accessible.StaticText
    Accessible.name: ui.summary.beforeFree + ui.summary.free + ui.summary.afterFree

    Label {
        y: figure.baselineOffset - baselineOffset
        text: root.ui.summary.beforeFree
        font: Theme.display(root.size * 0.46, text)
        color: root.levelColor
        Accessible.ignored: true
    }
    Label {
        id: figure

        text: root.ui.summary.free
        font: Theme.display(root.size, text)
        color: root.levelColor
        Accessible.ignored: true
    }
    Label {
        y: figure.baselineOffset - baselineOffset
        text: root.ui.summary.afterFree
        font: Theme.display(root.size * 0.46, text)
        color: root.levelColor
        Accessible.ignored: true
    }
}
