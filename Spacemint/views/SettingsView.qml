pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The settings page.
Rectangle {
    id: root

    required property Ui ui
    readonly property SettingsForm form: ui.settings

    color: Theme.canvas
    Component.onCompleted: form.refresh()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: 14
            Layout.topMargin: 12
            Layout.bottomMargin: 12
            spacing: 6

            IconButton {
                symbol: "chevron.left"
                help: "Back"
                onClicked: root.ui.page.showingSettings = false
            }
            Label {
                text: "Settings"
                size: 15
                weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
        }
        RowDivider {
            Layout.fillWidth: true
        }
        ScrollColumn {
            Layout.fillWidth: true
            Layout.fillHeight: true
            padding: 20
            spacing: 12

            SettingsSection {
                title: "Warning"
                footnote: root.form.warningFootnote

                SettingsRow {
                    title: "Warn me below"

                    Picker {
                        model: root.form.thresholds
                        currentIndex: root.form.threshold
                        Accessible.name: "Warn me below"
                        onActivated: index => root.form.chooseThreshold(index)
                    }
                }
                Repeater {
                    model: root.form.volumes

                    SettingsToggle {
                        id: watch

                        required property string modelData
                        required property int index

                        text: "Also watch " + watch.modelData
                        checked: root.form.watched[watch.index] ?? true
                        onToggled: root.form.setWatched(watch.index, watch.checked)
                    }
                }
                SettingsRow {
                    title: "Notifications"

                    SecondaryButtonStyle {
                        text: root.form.notificationsAllowed ? "Send test" : "Turned off · Open Settings"
                        onClicked: root.form.notificationsAllowed ? root.form.sendTestNotification() : root.form.openNotificationSettings()
                    }
                }
            }
            SettingsSection {
                title: "Background scan"
                footnote: root.form.scanFootnote

                SettingsRow {
                    title: "Scan"

                    Picker {
                        model: root.form.scopes
                        currentIndex: root.form.scope
                        Accessible.name: "Scan"
                        onActivated: index => root.form.chooseScope(index)
                    }
                }
                SettingsRow {
                    title: "How often"

                    Picker {
                        model: root.form.intervals
                        currentIndex: root.form.interval
                        Accessible.name: "How often"
                        onActivated: index => root.form.chooseInterval(index)
                    }
                }
                SettingsRow {
                    title: "File access"

                    Symbol {
                        visible: root.ui.page.hasAccess
                        symbol: "checkmark.circle.fill"
                        size: 18
                        color: Theme.teal
                        Accessible.ignored: false
                        Accessible.role: Accessible.StaticText
                        Accessible.name: "Complete"
                    }
                    SecondaryButtonStyle {
                        visible: !root.ui.page.hasAccess
                        text: "Open Settings"
                        onClicked: root.ui.page.openAccessSettings()
                    }
                }
            }
            SettingsSection {
                title: "General"
                footnote: root.form.itemHelp + (root.form.itemHelp && root.form.usageFootnote ? "\n" : "") + root.form.usageFootnote

                SettingsRow {
                    title: "Show Spacemint in"

                    SegmentedPicker {
                        model: root.form.presences
                        currentIndex: root.form.presence
                        Accessible.name: "Show Spacemint in"
                        onActivated: index => root.form.choosePresence(index)
                    }
                }
                SettingsToggle {
                    text: root.form.freeSpaceTitle
                    checked: root.form.showsFreeSpace
                    onToggled: root.form.setShowsFreeSpace(checked)
                }
                SettingsRow {
                    title: "Colour in the status area"

                    SegmentedPicker {
                        model: root.form.itemColours
                        currentIndex: root.form.itemColour
                        Accessible.name: "Colour in the status area"
                        onActivated: index => root.form.chooseItemColour(index)
                    }
                }
                SettingsToggle {
                    id: login

                    text: "Open at login"
                    checked: root.form.launchesAtLogin
                    onToggled: {
                        root.form.setLaunchesAtLogin(checked);
                        checked = Qt.binding(() => root.form.launchesAtLogin);
                    }
                }
                Label {
                    Layout.fillWidth: true
                    visible: text
                    text: root.form.loginError
                    size: 11
                    color: Theme.critical
                    wrapMode: Text.Wrap
                }
                SettingsToggle {
                    text: "Share anonymous usage"
                    visible: root.form.usage
                    checked: root.form.sharesUsage
                    onToggled: root.form.setSharesUsage(checked)
                }
            }
            LazyView {
                Layout.fillWidth: true
                Layout.topMargin: 6
                visible: wanted
                view: "UpdatesSection.qml"
                wanted: root.form.updates
                properties: ({
                        updates: root.form.updates
                    })
            }
            RowLayout {
                Layout.fillWidth: true
                Layout.topMargin: 6

                Label {
                    Layout.fillWidth: true
                    text: "Spacemint"
                    size: 11
                    color: Theme.secondary
                }
                SecondaryButtonStyle {
                    text: "About"
                    onClicked: root.ui.about()
                }
                SecondaryButtonStyle {
                    text: "Quit Spacemint"
                    onClicked: root.ui.quit()
                }
            }
        }
    }
}
