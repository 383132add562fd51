import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The page of a window that has room: from 720 on with the pages above, from 960 on with them at the side.
Item {
    id: root

    required property Ui ui
    readonly property real step: width / Theme.textScale
    readonly property bool hasSide: step >= 960
    readonly property bool showsFolders: ui.page.tab === 1
    readonly property bool showsFiles: ui.page.tab === 2
    readonly property bool showsSpace: !hasSide && ui.summary.known && ui.source.isOfHere

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: search.forceActiveFocus(Qt.ShortcutFocusReason)
    }
    // Who opens a folder has found it.
    Connections {
        target: root.ui.folders

        function onOpened() {
            root.ui.files.words = "";
        }
    }
    RowLayout {
        anchors.fill: parent
        spacing: 0

        LazyView {
            Layout.fillHeight: true
            visible: wanted
            view: "SideBar.qml"
            wanted: root.hasSide
            properties: ({
                    ui: root.ui
                })
        }
        ColumnLayout {
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 20
                Layout.rightMargin: 14
                Layout.preferredHeight: Theme.scaled(52)
                spacing: 12

                FreeFigure {
                    visible: root.showsSpace
                    ui: root.ui
                    size: 28
                }
                Label {
                    Layout.alignment: Qt.AlignBottom
                    Layout.bottomMargin: Theme.scaled(15)
                    visible: root.showsSpace
                    text: root.ui.summary.total
                    size: 12
                    color: Theme.secondary
                }
                Breadcrumb {
                    Layout.fillWidth: true
                    Layout.leftMargin: -6
                    visible: root.hasSide && root.showsFolders
                    explorer: root.ui.explorer
                }
                SectionLabel {
                    Layout.fillWidth: true
                    visible: root.hasSide && !root.showsFolders
                    title: root.ui.page.tabTitles[root.ui.page.tabIndex] ?? ""
                    size: 15
                }
                Item {
                    Layout.fillWidth: true
                    visible: !root.hasSide
                }
                ListPickers {
                    visible: root.hasSide && root.showsFolders
                    explorer: root.ui.explorer
                }
                SearchField {
                    id: search

                    implicitWidth: Math.max(Theme.scaled(root.hasSide ? 190 : 180), Math.min(Theme.scaled(240), root.step >= 1200 ? Infinity : hintWidth))
                    hint: Words.findInScan
                    text: root.ui.files.words
                    onTextChanged: root.ui.files.words = text
                    onTextEdited: {
                        if (!root.showsFolders && !root.showsFiles)
                            root.ui.page.tab = 1;
                    }

                    Connections {
                        target: root.ui.files

                        function onWordsChanged() {
                            search.text = root.ui.files.words;
                        }
                    }
                }
                IconButton {
                    symbol: "gearshape"
                    help: Words.settings
                    onClicked: root.ui.page.showingSettings = true
                }
            }
            SpaceBar {
                Layout.fillWidth: true
                Layout.leftMargin: 20
                Layout.rightMargin: 20
                visible: root.showsSpace
                ui: root.ui
                implicitHeight: 4
            }
            SourceCard {
                Layout.fillWidth: true
                Layout.leftMargin: 20
                Layout.rightMargin: 20
                Layout.bottomMargin: 8
                source: root.ui.source
            }
            TabBar {
                Layout.fillWidth: true
                Layout.margins: 20
                Layout.topMargin: 10
                Layout.bottomMargin: 10
                visible: !root.hasSide
                titles: root.ui.page.tabTitles
                currentIndex: root.ui.page.tabIndex
                onActivated: index => root.ui.page.tabIndex = index
            }
            RowDivider {
                Layout.fillWidth: true
            }
            SpaceWarning {
                Layout.fillWidth: true
                Layout.maximumWidth: root.showsFolders ? Infinity : tabs.widest
                Layout.margins: 20
                Layout.bottomMargin: 0
                visible: root.ui.summary.warning
                ui: root.ui
            }
            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 14
                Layout.rightMargin: 20
                Layout.topMargin: 8
                visible: !root.hasSide && root.showsFolders
                spacing: 12

                Breadcrumb {
                    Layout.fillWidth: true
                    explorer: root.ui.explorer
                }
                ListPickers {
                    explorer: root.ui.explorer
                }
            }
            TabStack {
                id: tabs

                Layout.fillWidth: true
                Layout.fillHeight: true
                ui: root.ui
                isWide: true
                hasSide: root.hasSide
                columns: root.step >= 1200 ? 2 : 1
            }
            MessageBanner {
                Layout.fillWidth: true
                Layout.leftMargin: 20
                Layout.rightMargin: 20
                Layout.topMargin: 8
                Layout.bottomMargin: 8
                visible: root.ui.page.message
                text: root.ui.page.message
                action: root.ui.page.messageAction
                onPerformed: root.ui.page.performMessageAction()
                onDismissed: root.ui.page.dismissMessage()
            }
            RowDivider {
                Layout.fillWidth: true
                visible: footer.visible
            }
            Footer {
                id: footer

                Layout.fillWidth: true
                visible: !root.hasSide && root.ui.source.isOfHere
                ui: root.ui
            }
        }
    }
}
