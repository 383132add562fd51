import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The sentence about a low level, and the way to what can be freed.
Rectangle {
    id: root

    required property Ui ui
    // QML cannot read an enumerator that begins with a small letter.
    readonly property bool isCritical: ui.summary.warningLevel === 2
    readonly property color levelColor: isCritical ? Theme.critical : Theme.warning

    visible: ui.summary.warning
    implicitHeight: line.implicitHeight + 16
    radius: 10
    color: isCritical ? Theme.criticalSoft : Theme.warningFill
    border.width: 1
    border.color: isCritical ? Theme.critical : Theme.warningBorder

    GridLayout {
        id: line

        // With large letters the button is below the text.
        readonly property bool isNarrow: width - button.implicitWidth < Theme.scaled(200)

        anchors {
            left: parent.left
            right: parent.right
            verticalCenter: parent.verticalCenter
            leftMargin: 10
            rightMargin: 8
        }
        columnSpacing: 10
        rowSpacing: 6

        Symbol {
            Layout.row: 0
            Layout.column: 0
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 2
            symbol: "exclamationmark.triangle.fill"
            color: root.levelColor
        }
        Label {
            Layout.row: 0
            Layout.column: 1
            Layout.fillWidth: true
            text: root.ui.summary.warning
            size: 12.5
            wrapMode: Text.Wrap
            Accessible.role: Accessible.AlertMessage
        }
        SecondaryButtonStyle {
            id: button

            Layout.row: line.isNarrow ? 1 : 0
            Layout.column: line.isNarrow ? 1 : 2
            visible: root.ui.page.state === Page.Tabs
            text: Words.showWhatToFree
            onClicked: root.ui.page.showWhatToFree()
        }
    }
}
