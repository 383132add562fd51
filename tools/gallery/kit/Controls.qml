import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

RowLayout {
    property Item focused: focusedToggle

    spacing: 32

    ColumnLayout {
        Layout.alignment: Qt.AlignTop
        spacing: 16

        SectionLabel {
            title: "Toggle"
        }
        Toggle {
            Layout.fillWidth: true
            text: "Open at login"
            checked: true
        }
        Toggle {
            id: focusedToggle

            Layout.fillWidth: true
            text: "Notify me"
        }
        Toggle {
            Layout.fillWidth: true
            text: "Not usable"
            enabled: false
            checked: true
        }
        SectionLabel {
            title: "SegmentedPicker"
        }
        SegmentedPicker {
            model: ["Status area", "Window"]
        }
        SegmentedPicker {
            model: ["Day", "Week", "Month"]
            currentIndex: 1
            enabled: false
        }
        SectionLabel {
            title: "Picker"
        }
        RowLayout {
            Label {
                text: "Scan"
            }
            Picker {
                model: ["Home folder", "Entire disk"]
            }
        }
        Picker {
            model: ["5 GB free"]
            enabled: false
        }
    }
    ColumnLayout {
        Layout.alignment: Qt.AlignTop
        spacing: 16

        SectionLabel {
            title: "UsageBar"
        }
        Repeater {
            model: [0, 0.01, 0.3, 0.8, 1]

            UsageBar {
                required property real modelData

                Layout.preferredWidth: 240
                fraction: modelData
                color: modelData < 0.5 ? Theme.ink : modelData < 1 ? Theme.warning : Theme.critical
            }
        }
        UsageBar {
            Layout.preferredWidth: 240
            Layout.preferredHeight: 12
            fraction: 0.6
            color: Theme.teal
        }
        SectionLabel {
            title: "Spinner"
        }
        RowLayout {
            spacing: 8

            Spinner {
                what: "Working"
            }
            Label {
                text: "Reading the home folder…"
                color: Theme.secondary
            }
        }
        SectionLabel {
            title: "ScrollColumn"
        }
        ScrollColumn {
            Layout.preferredWidth: 240
            Layout.preferredHeight: 120
            spacing: 4

            Repeater {
                model: 12

                Label {
                    required property int modelData

                    text: `Row ${modelData + 1}`
                }
            }
        }
    }
}
