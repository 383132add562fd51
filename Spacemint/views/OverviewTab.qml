pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The tab with what grew, and where space can be freed.
ScrollColumn {
    id: root

    required property Ui ui
    property bool showAllGrowth: false
    /// Two in a wide window: what changed, and what can be freed.
    property int columns: 1
    /// False where the free space over time is shown beside the page.
    property bool showsLine: true

    readonly property Overview overview: ui.overview
    readonly property string growthToggle: overview.growthToggle(overview.growthCount, showAllGrowth)

    padding: 20
    spacing: 10

    Binding {
        target: root.overview
        property: "isSeen"
        value: root.visible && root.Window.visibility !== Window.Hidden && root.Window.visibility !== Window.Minimized
        restoreMode: Binding.RestoreNone
    }
    Component.onDestruction: overview.isSeen = false

    // Places its two parts itself: each layout around a text that wraps is one more round until the page has its height.
    Item {
        id: parts

        readonly property real gap: root.columns > 1 ? 32 : 20
        readonly property real columnWidth: root.columns > 1 ? (width - gap) / 2 : width

        Layout.fillWidth: true
        implicitHeight: root.columns > 1 ? Math.max(changed.implicitHeight, freeing.implicitHeight) : changed.implicitHeight + gap + freeing.implicitHeight

        ColumnLayout {
            id: changed

            width: parts.columnWidth
            spacing: 10

            // Keeps its height while its figures change.
            ColumnLayout {
                Layout.fillWidth: true
                Layout.bottomMargin: 10
                visible: root.overview.growing.count > 0
                spacing: 10

                Column {
                    Layout.fillWidth: true
                    spacing: 4

                    SectionHeader {
                        width: parent.width
                        title: Words.growingNow
                    }
                    Label {
                        width: parent.width
                        visible: text
                        text: root.overview.fullIn
                        color: Theme.amberInk
                        size: 12
                        wrapMode: Text.Wrap
                    }
                }
                Card {
                    Layout.fillWidth: true
                    padding: 4
                    spacing: 0

                    RowList {
                        Layout.fillWidth: true
                        rows: root.overview.growing
                        name: Words.growingNow
                        wrapsSubtitles: true
                        sizeColor: Theme.amberInk
                    }
                }
            }

            SectionHeader {
                id: changedHeader

                title: Words.whatChanged

                Label {
                    visible: root.overview.baselines.length === 1
                    text: root.overview.baselines[0] ?? ""
                    size: 12
                    color: Theme.secondary
                    Accessible.name: Words.spoken([Words.comparedWith, text])
                }
                Picker {
                    visible: root.overview.baselines.length > 1
                    model: root.overview.baselines
                    currentIndex: root.overview.baselineIndex
                    Accessible.name: Words.comparedWith
                    onActivated: index => root.overview.chooseBaseline(index)
                }
            }
            FreeSpaceLine {
                Layout.fillWidth: true
                visible: root.showsLine && history.isKnown
                history: root.ui.spaceHistory
            }
            Label {
                Layout.fillWidth: true
                visible: text
                text: root.overview.freeChange
                color: Theme.secondary
                size: 12
                wrapMode: Text.Wrap
            }
            Placeholder {
                text: root.overview.growth.text
            }
            Card {
                Layout.fillWidth: true
                visible: root.overview.growth.count > 0
                padding: 4
                spacing: 0

                RowList {
                    Layout.fillWidth: true
                    rows: root.showAllGrowth ? root.overview.growth : root.overview.firstGrowth
                    name: Words.whatChanged
                    wrapsSubtitles: true
                    sizeColor: Theme.amberInk
                    isTree: true
                    // As long in the third level as in the first, so that the bars compare.
                    barLength: Math.min(Theme.scaled(180), width - 60 - Theme.scaled(130))
                    onRowClicked: index => rows.toggle(rows.rowIdAt(index))
                    onRowOpened: index => rows.showInFolders(rows.rowIdAt(index))
                }
                QuietButtonStyle {
                    Layout.alignment: Qt.AlignHCenter
                    Layout.topMargin: 2
                    Layout.bottomMargin: 2
                    visible: root.growthToggle
                    text: root.growthToggle
                    onClicked: root.showAllGrowth = !root.showAllGrowth
                }
            }
        }
        ColumnLayout {
            id: freeing

            x: root.columns > 1 ? parts.columnWidth + parts.gap : 0
            y: root.columns > 1 ? 0 : changed.implicitHeight + parts.gap
            width: parts.columnWidth
            spacing: 10

            SectionHeader {
                // Level with the title in the other column.
                Layout.minimumHeight: root.columns > 1 && !root.overview.growing.count ? changedHeader.implicitHeight : 0
                title: Words.whereToFree
            }
            AccessCard {
                ui: root.ui
                visible: !root.overview.hasAccess
            }
            CardList {
                items: root.overview.trash
                row: RemovalCard {
                    rows: root.overview.trash
                    revealTitle: Words.showContents
                }
            }
            CardList {
                items: root.overview.backups
                row: RemovalCard {
                    rows: root.overview.backups
                    revealTitle: ItemText.showInFileManager
                }
            }
            Placeholder {
                text: root.overview.suggestions.text
            }
            Card {
                Layout.fillWidth: true
                visible: suggestions.count > 0
                padding: 4
                spacing: 0

                Repeater {
                    id: suggestions

                    model: root.overview.suggestions

                    SuggestionRow {
                        rows: root.overview.suggestions
                    }
                }
            }
            NotInFilesSection {
                Layout.fillWidth: true
                Layout.topMargin: 10
                account: root.ui.notInFiles
            }
        }
    }
    Connections {
        target: root.ui.page

        function onWhatToFreeWanted() {
            root.scrollTo(freeing.mapToItem(root.contentItem, 0, -20).y);
        }
    }
}
