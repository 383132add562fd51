import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The tabs. A tab is made when it is first shown, and keeps its state.
ColumnLayout {
    id: root

    required property Ui ui

    spacing: 0

    TabBar {
        Layout.fillWidth: true
        Layout.margins: 20
        Layout.topMargin: 14
        Layout.bottomMargin: 12
        titles: root.ui.page.tabTitles
        currentIndex: root.ui.page.tab
        onActivated: index => root.ui.page.tab = index
    }
    RowDivider {
        Layout.fillWidth: true
    }
    Item {
        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true

        TabPage {
            isCurrent: root.ui.page.tab === 0
            view: "OverviewTab.qml"
            properties: ({
                    ui: root.ui
                })
        }
        TabPage {
            isCurrent: root.ui.page.tab === 1
            view: "FoldersTab.qml"
            properties: ({
                    ui: root.ui
                })
        }
        TabPage {
            isCurrent: root.ui.page.tab === 2
            view: "FilesTab.qml"
            properties: ({
                    ui: root.ui
                })
        }
        TabPage {
            isCurrent: root.ui.page.tab === 3
            view: "DeveloperTab.qml"
            properties: ({
                    ui: root.ui
                })
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
