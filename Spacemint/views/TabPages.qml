pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

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

        Repeater {
            model: [overview, folders, files, developer]

            Loader {
                required property int index
                required property Component modelData
                readonly property bool isCurrent: root.ui.page.tab === index

                anchors.fill: parent
                visible: isCurrent
                sourceComponent: modelData
                active: false
                onIsCurrentChanged: active = active || isCurrent
                Component.onCompleted: active = isCurrent
            }
        }
    }

    Component {
        id: overview

        OverviewTab {
            ui: root.ui
        }
    }
    Component {
        id: folders

        FoldersTab {
            ui: root.ui
        }
    }
    Component {
        id: files

        FilesTab {
            ui: root.ui
        }
    }
    Component {
        id: developer

        DeveloperTab {
            ui: root.ui
        }
    }
}
