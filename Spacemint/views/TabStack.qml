import QtQuick
import Spacemint.Views

/// The pages of the tabs. A page is made when it is first shown, and keeps its state.
Item {
    id: root

    required property Ui ui
    /// Whether the folders are shown beside their map.
    property bool isWide: false
    /// In how many columns the overview is.
    property int columns: 1
    /// The pages other than the folders are no wider than this.
    readonly property real widest: isWide ? 640 * columns + 40 : width

    readonly property real beside: Math.max(0, width - widest)

    clip: true

    TabPage {
        id: overview

        anchors.rightMargin: root.beside
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
    }
    TabPage {
        isCurrent: root.ui.page.tab === 1
        view: root.isWide ? "ExplorerView.qml" : "FoldersTab.qml"
        properties: ({
                ui: root.ui
            })
    }
    TabPage {
        anchors.rightMargin: root.beside
        isCurrent: root.ui.page.tab === 2
        view: "FilesTab.qml"
        properties: ({
                ui: root.ui
            })
    }
    TabPage {
        anchors.rightMargin: root.beside
        isCurrent: root.ui.page.tab === 3
        view: "DeveloperTab.qml"
        properties: ({
                ui: root.ui
            })
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
