import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The page with the free space and the tabs, or the welcome before the first scan.
Rectangle {
    id: root

    required property Ui ui
    readonly property bool isWelcome: ui.page.state === Page.Welcome

    readonly property bool isSeen: Theme.isSeen(root)

    color: Theme.canvas
    onIsSeenChanged: ui.scan.setSeen(root, isSeen)
    Component.onCompleted: ui.scan.setSeen(root, isSeen)
    Component.onDestruction: ui.scan.setSeen(root, false)

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        TopBar {
            Layout.fillWidth: true
            ui: root.ui
        }
        LazyView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: wanted
            view: "WelcomeView.qml"
            wanted: root.isWelcome
            properties: ({
                    ui: root.ui
                })
        }
        SpaceSummary {
            Layout.fillWidth: true
            Layout.leftMargin: 20
            Layout.rightMargin: 20
            visible: !root.isWelcome && root.ui.summary.known && root.ui.source.isOfHere
            ui: root.ui
        }
        SourceCard {
            Layout.fillWidth: true
            Layout.leftMargin: 20
            Layout.rightMargin: 20
            source: root.ui.source
        }
        LazyView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: wanted
            view: "FirstScanView.qml"
            wanted: root.ui.page.state === Page.FirstScan
            properties: ({
                    ui: root.ui
                })
        }
        LazyView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: wanted
            view: "TabPages.qml"
            wanted: root.ui.page.state === Page.Tabs
            properties: ({
                    ui: root.ui
                })
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
            visible: root.ui.page.state === Page.Tabs && root.ui.source.isOfHere
            ui: root.ui
        }
    }
}
