import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The tab with the largest files, and the search for files and folders.
ColumnLayout {
    id: root

    required property Ui ui
    /// Whether the page around the tab has a field for the search.
    property bool isWide: false
    readonly property Files files: ui.files
    /// A wide page leaves the rest of its width free.
    property real maximumWidth: Infinity

    spacing: 0

    Flow {
        Layout.fillWidth: true
        Layout.maximumWidth: root.maximumWidth
        Layout.leftMargin: 20
        Layout.rightMargin: 20
        Layout.topMargin: 14
        spacing: 8

        SearchField {
            id: field

            readonly property real beside: parent.width - age.width - 8

            visible: !root.isWide
            width: beside < hintWidth ? parent.width : beside
            hint: Words.searchExample
            Accessible.name: Words.search
            text: root.files.words
            onTextChanged: root.files.words = text
            Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)

            Connections {
                target: root.files

                function onWordsChanged() {
                    field.text = root.files.words;
                }
            }
        }
        Picker {
            id: age

            width: Math.max(leastWidth, Math.min(implicitWidth, parent.width - 8 - field.hintWidth))
            model: root.files.ages
            currentIndex: root.files.age
            Accessible.name: Words.age
            onActivated: index => root.files.chooseAge(index)
        }
    }
    KindsBar {
        Layout.fillWidth: true
        Layout.maximumWidth: root.maximumWidth
        Layout.leftMargin: 20
        Layout.rightMargin: 20
        Layout.topMargin: 12
        visible: root.files.kinds.length > 0
        files: root.files
    }
    SectionHeader {
        Layout.maximumWidth: root.maximumWidth
        Layout.margins: 20
        Layout.topMargin: 14
        Layout.bottomMargin: 10
        title: root.files.title

        Label {
            Layout.fillWidth: true
            visible: text
            text: root.files.status
            size: 12
            color: root.files.isUnderstood ? Theme.secondary : Theme.critical
            wrapMode: Text.Wrap
        }
    }
    Placeholder {
        Layout.leftMargin: 20
        Layout.rightMargin: 20
        text: root.files.largest.text
    }
    LongList {
        id: list

        Layout.fillWidth: true
        Layout.fillHeight: true
        rows: root.files.largest
        name: root.files.title
        maximumWidth: root.maximumWidth
        focus: true
    }
    MarkedBar {
        Layout.fillWidth: true
        rows: root.files.largest
    }
}
