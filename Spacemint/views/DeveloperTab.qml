import QtQuick
import QtQuick.Window
import Spacemint.UiKit
import Spacemint.Views

/// The tab with the disk space that developers' tools use.
ScrollColumn {
    id: root

    required property Ui ui

    readonly property bool isSeen: visible && Window.visibility !== Window.Hidden

    padding: 20
    spacing: 24
    Component.onCompleted: if (isSeen)
        ui.developer.appeared()
    onIsSeenChanged: if (isSeen)
        ui.developer.appeared()

    CachesSection {
        ui: root.ui
    }
    OllamaSection {
        ui: root.ui
    }
    HuggingFaceSection {
        ui: root.ui
    }
    DockerSection {
        ui: root.ui
    }
    WorktreeSection {
        ui: root.ui
    }
}
