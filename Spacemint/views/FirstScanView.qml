import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The page during the first scan.
Item {
    id: root

    required property Ui ui

    ColumnLayout {
        anchors.centerIn: parent
        width: parent.width - 80
        spacing: 16

        LogoMark {
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: Theme.scaled(72)
            implicitHeight: implicitWidth
            ink: Theme.ink
            ceiling: Theme.lavenderInk

            SequentialAnimation on opacity {
                running: Theme.isSeen(root) && !Theme.reducedMotion
                loops: Animation.Infinite

                NumberAnimation {
                    to: 0.35
                    duration: 900
                    easing.type: Easing.InOutSine
                }
                NumberAnimation {
                    to: 1
                    duration: 900
                    easing.type: Easing.InOutSine
                }
            }
        }
        Label {
            Layout.fillWidth: true
            text: Words.firstScanTitle
            font: Theme.display(24, text)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        ScanProgressView {
            Layout.fillWidth: true
            Layout.topMargin: 8
            ui: root.ui
        }
        Label {
            Layout.fillWidth: true
            text: Words.firstScanLine
            size: 12
            color: Theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        SecondaryButtonStyle {
            Layout.alignment: Qt.AlignHCenter
            text: Words.stop
            onClicked: root.ui.scan.stop()
        }
    }
}
