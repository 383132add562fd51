import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// Stale git worktrees; a button shows the active ones too.
ColumnLayout {
    id: root

    required property Ui ui
    property bool showAll: false

    readonly property Developer developer: ui.developer

    spacing: 10

    SectionHeader {
        id: header

        title: Words.worktrees
    }
    StatusCard {
        text: root.developer.worktrees.text
    }
    SectionRows {
        rows: root.developer.worktrees
        name: header.title
    }
    QuietButtonStyle {
        visible: text
        text: root.developer.activeToggle(root.developer.activeWorktrees.count, root.showAll)
        onClicked: root.showAll = !root.showAll
    }
    SectionRows {
        visible: root.showAll && root.developer.activeWorktrees.count > 0
        rows: root.developer.activeWorktrees
        name: header.title
    }
}
