pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The patterns of what scans leave out, and a field for another one.
SettingsSection {
    id: root

    required property SettingsForm form

    function add() {
        if (form.addExclude(field.text))
            field.clear();
    }

    title: Words.leftOut
    footnote: Words.leftOutLine

    Repeater {
        model: root.form.excludes

        SettingsRow {
            id: pattern

            required property string modelData
            required property int index

            title: modelData

            IconButton {
                Layout.rightMargin: -padding
                symbol: "xmark"
                size: 12
                help: root.form.removeExcludeHelp(pattern.modelData)
                onClicked: {
                    // This button goes with its pattern.
                    if (activeFocus)
                        field.forceActiveFocus(Theme.focusReason());
                    root.form.removeExclude(pattern.index);
                }
            }
        }
    }
    GridLayout {
        Layout.fillWidth: true
        // With large letters the button is below the field.
        columns: field.hintWidth + columnSpacing + button.implicitWidth > width ? 1 : 2
        columnSpacing: 8
        rowSpacing: 4

        SearchField {
            id: field

            Layout.fillWidth: true
            symbol: ""
            hint: Words.leftOutExample
            Accessible.name: Words.leftOut
            onAccepted: root.add()
        }
        SecondaryButtonStyle {
            id: button

            Layout.alignment: Qt.AlignRight
            text: Words.add
            enabled: field.text
            onClicked: root.add()
        }
    }
    Label {
        Layout.fillWidth: true
        visible: text
        text: root.form.excludeError
        size: 11
        color: Theme.critical
        wrapMode: Text.Wrap
    }
}
