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
    Component.onCompleted: {
        form.refresh();
        back.forceActiveFocus(Theme.focusReason());
    }

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
                id: back

                symbol: LayoutMirroring.enabled ? "chevron.right" : "chevron.left"
                help: Words.back
                onClicked: root.ui.page.showingSettings = false
            }
            Label {
                text: Words.settings
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
            maximumWidth: Theme.scaled(640)
            padding: 20
            spacing: 12

            SettingsSection {
                title: Words.warning
                footnote: root.form.warningFootnote

                SettingsRow {
                    title: Words.warnBelow

                    Picker {
                        model: root.form.thresholds
                        currentIndex: root.form.threshold
                        Accessible.name: Words.warnBelow
                        onActivated: index => root.form.chooseThreshold(index)
                    }
                }
                Repeater {
                    model: root.form.watchTitles

                    SettingsToggle {
                        id: watch

                        required property string modelData
                        required property int index

                        text: watch.modelData
                        checked: root.form.watched[watch.index] ?? true
                        onToggled: root.form.setWatched(watch.index, watch.checked)
                    }
                }
                SettingsRow {
                    title: Words.notifications

                    SecondaryButtonStyle {
                        text: root.form.notificationsAllowed ? Words.sendTest : Words.notificationsOff
                        Accessible.description: Words.notifications
                        onClicked: root.form.notificationsAllowed ? root.form.sendTestNotification() : root.form.openNotificationSettings()
                    }
                }
            }
            SettingsSection {
                title: Words.backgroundScan
                footnote: root.form.scanFootnote

                SettingsRow {
                    title: Words.scan

                    Picker {
                        model: root.form.scopes
                        currentIndex: root.form.scope
                        Accessible.name: Words.scan
                        onActivated: index => root.form.chooseScope(index)
                    }
                }
                SettingsRow {
                    title: Words.howOften

                    Picker {
                        model: root.form.intervals
                        currentIndex: root.form.interval
                        Accessible.name: Words.howOften
                        onActivated: index => root.form.chooseInterval(index)
                    }
                }
                SettingsRow {
                    title: Words.fileAccess

                    Symbol {
                        visible: root.ui.page.hasAccess
                        symbol: "checkmark.circle.fill"
                        size: 18
                        color: Theme.teal
                        Accessible.ignored: false
                        Accessible.role: Accessible.StaticText
                        Accessible.name: Words.accessComplete
                    }
                    SecondaryButtonStyle {
                        visible: !root.ui.page.hasAccess
                        text: Words.openSettings
                        Accessible.description: Words.fileAccess
                        onClicked: root.ui.page.openAccessSettings()
                    }
                }
            }
            ExcludesSection {
                form: root.form
            }
            SettingsSection {
                title: Words.general
                footnote: root.form.generalFootnote

                SettingsRow {
                    title: Words.showIn

                    SegmentedPicker {
                        model: root.form.presences
                        currentIndex: root.form.presence
                        Accessible.name: Words.showIn
                        onActivated: index => root.form.choosePresence(index)
                    }
                }
                SettingsToggle {
                    text: Words.freeSpaceInItem
                    checked: root.form.showsFreeSpace
                    onToggled: root.form.setShowsFreeSpace(checked)
                }
                SettingsRow {
                    title: Words.itemColour

                    SegmentedPicker {
                        model: root.form.itemColours
                        currentIndex: root.form.itemColour
                        Accessible.name: Words.itemColour
                        onActivated: index => root.form.chooseItemColour(index)
                    }
                }
                SettingsToggle {
                    id: login

                    text: Words.openAtLogin
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
                    text: Words.shareUsage
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
                    text: Words.about
                    onClicked: root.ui.about()
                }
                SecondaryButtonStyle {
                    text: Words.quit
                    onClicked: root.ui.quit()
                }
            }
        }
    }
}
