import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The tabs. Each is made when it is first looked at, and stays as it was left.
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
            sourceComponent: OverviewTab {
                ui: root.ui
            }
        }
        TabPage {
            isCurrent: root.ui.page.tab === 1
            sourceComponent: FoldersTab {
                ui: root.ui
            }
        }
        TabPage {
            isCurrent: root.ui.page.tab === 2
            sourceComponent: FilesTab {
                ui: root.ui
            }
        }
        TabPage {
            isCurrent: root.ui.page.tab === 3
            sourceComponent: DeveloperTab {
                ui: root.ui
            }
        }
    }

    component TabPage: Loader {
        required property bool isCurrent

        anchors.fill: parent
        visible: isCurrent
        active: false
        onIsCurrentChanged: active = active || isCurrent
        Component.onCompleted: active = active || isCurrent
    }
}
