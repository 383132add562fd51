import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The pages of the tabs. A page is made when it is first shown, and keeps its state.
Item {
    id: root

    required property Ui ui
    /// Whether the folders are shown beside their map.
    property bool isWide: false
    /// In how many columns the overview is.
    property int columns: 1
    /// Whether the free space over time is shown elsewhere.
    property bool hasSide: false
    /// The content of the pages other than the folders is no wider than this.
    readonly property real widest: Theme.scaled(columns > 1 ? 2 * 640 + 32 : 720)

    clip: true

    TabPage {
        id: overview

        isCurrent: root.ui.page.tab === 0
        view: "OverviewTab.qml"
        properties: ({
                ui: root.ui
            })

        Binding {
            target: overview.item
            property: "columns"
            value: root.columns
        }
        Binding {
            target: overview.item
            property: "showsLine"
            value: !root.hasSide
        }
        Binding {
            target: overview.item
            property: "maximumWidth"
            value: root.widest
        }
    }
    TabPage {
        isCurrent: root.ui.page.tab === 1
        view: root.isWide ? "ExplorerView.qml" : "FoldersTab.qml"
        properties: ({
                ui: root.ui
            })
    }
    TabPage {
        id: files

        isCurrent: root.ui.page.tab === 2
        view: "FilesTab.qml"
        properties: ({
                ui: root.ui,
                isWide: root.isWide
            })

        Binding {
            target: files.item
            property: "maximumWidth"
            value: root.widest
        }
    }
    TabPage {
        id: developer

        isCurrent: root.ui.page.tab === 3
        view: "DeveloperTab.qml"
        properties: ({
                ui: root.ui
            })

        Binding {
            target: developer.item
            property: "maximumWidth"
            value: root.widest
        }
    }

    component TabPage: LazyView {
        required property bool isCurrent

        anchors.fill: parent
        visible: isCurrent
        wanted: false
        onIsCurrentChanged: wanted = wanted || isCurrent
        Component.onCompleted: wanted = wanted || isCurrent
    }
}
