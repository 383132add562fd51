pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The tab with one folder and the items in it.
Item {
    id: root

    required property Ui ui

    readonly property Folders folders: ui.folders

    function show(row: int) {
        if (row < 0)
            return;
        list.currentIndex = row;
        list.positionViewAtIndex(row, ListView.Contain);
        list.forceActiveFocus(Qt.OtherFocusReason);
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        GridLayout {
            id: header

            // Where the name would be cut short, the controls are below it.
            readonly property bool isNarrow: back.visible * (back.width + 6) + Math.min(names.implicitWidth, Theme.scaled(150)) + sizeLabel.implicitWidth + controls.implicitWidth + 12 > root.width - 40

            Layout.fillWidth: true
            Layout.margins: 20
            Layout.bottomMargin: 10
            columns: isNarrow ? 1 : 2
            columnSpacing: 6
            rowSpacing: 6

            RowLayout {
                spacing: 6

                IconButton {
                    id: back

                    visible: root.folders.parentTitle
                    symbol: LayoutMirroring.enabled ? "chevron.right" : "chevron.left"
                    help: root.folders.parentTitle
                    onClicked: root.folders.goBack()
                }
                ColumnLayout {
                    id: names

                    spacing: 1

                    Label {
                        Layout.fillWidth: true
                        visible: text
                        text: root.folders.parentTitle
                        size: 11
                        color: Theme.secondary
                        elide: Text.ElideMiddle

                        TapHandler {
                            onTapped: root.folders.goBack()
                        }
                        HoverHandler {
                            cursorShape: Qt.PointingHandCursor
                        }
                    }
                    SectionLabel {
                        Layout.fillWidth: true
                        title: root.folders.title
                        size: 15
                        // The first folder has a title, and others their names.
                        elide: root.folders.parentTitle ? Text.ElideMiddle : Text.ElideNone
                        wrapMode: root.folders.parentTitle ? Text.NoWrap : Text.Wrap
                    }
                }
                Label {
                    id: sizeLabel

                    text: root.folders.sizeText
                    size: 13
                    color: Theme.secondary
                }
            }
            RowLayout {
                id: controls

                Layout.fillWidth: false
                Layout.alignment: Qt.AlignRight
                spacing: 6

                SegmentedPicker {
                    model: root.folders.orders
                    currentIndex: root.folders.order
                    size: 11
                    Accessible.name: Words.order
                    onActivated: index => root.folders.order = index
                }
                IconButton {
                    visible: root.folders.content.isOfHere
                    symbol: "magnifyingglass"
                    help: ItemText.showInFileManager
                    onClicked: root.folders.reveal()
                }
            }
        }
        FolderPicture {
            Layout.fillWidth: true
            Layout.leftMargin: 20
            Layout.rightMargin: 20
            Layout.bottomMargin: 8
            visible: root.ui.explorer.hasItems && root.Window.height >= 620
            explorer: root.ui.explorer
            onChildWanted: index => root.show(root.folders.rowOf(index))
        }
        Placeholder {
            Layout.leftMargin: 20
            Layout.rightMargin: 20
            text: root.folders.content.text
        }
        LongList {
            id: list

            Layout.fillWidth: true
            Layout.fillHeight: true
            rows: root.folders.content
            name: root.folders.title
            focus: true
            hasChangeColumn: root.ui.explorer.canCompare
            pointedIndex: root.folders.rowOf(root.ui.explorer.pointedChild)
            onPointed: index => root.ui.explorer.pointRow(rows, index)
            Keys.onPressed: event => {
                if (event.key !== Qt.Key_Backspace && !(event.key === Qt.Key_Left && event.modifiers & Qt.AltModifier))
                    return;
                root.folders.goBack();
                event.accepted = true;
            }
        }
        MarkedBar {
            Layout.fillWidth: true
            rows: root.folders.content
        }
    }
    Connections {
        target: root.ui.explorer

        function onNotInFilesWanted() {
            const row = root.folders.unfoldNotInFiles();
            root.show(row);
            list.positionViewAtIndex(row, ListView.Beginning);
        }
    }
    Connections {
        target: root.folders

        function onOpened(row: int) {
            list.currentIndex = row;
            if (row > 0)
                list.positionViewAtIndex(row, ListView.Center);
            else
                list.positionViewAtBeginning();
        }
    }
}
