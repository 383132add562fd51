import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The page during the first scan: what it has found so far.
ColumnLayout {
    id: root

    required property Ui ui
    readonly property bool hasFound: ui.scan.found.count > 0

    spacing: 0

    ColumnLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.margins: 20
        spacing: 12

        Item {
            Layout.fillHeight: true
            visible: !root.hasFound
        }
        LogoMark {
            Layout.alignment: Qt.AlignHCenter
            visible: !root.hasFound
            implicitWidth: Theme.scaled(72)
            implicitHeight: implicitWidth
            ink: Theme.ink
            ceiling: Theme.lavenderInk

            SequentialAnimation on opacity {
                running: Theme.isSeen(root) && !root.hasFound && !Theme.reducedMotion
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
            horizontalAlignment: root.hasFound ? Text.AlignLeft : Text.AlignHCenter
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
        ScanProgressView {
            Layout.fillWidth: true
            ui: root.ui
        }
        Label {
            Layout.fillWidth: true
            visible: !root.hasFound
            text: Words.firstScanLine
            size: 12
            color: Theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        SectionHeader {
            Layout.topMargin: 4
            visible: root.hasFound
            title: Words.foundSoFar

            Label {
                text: root.ui.scan.foundSize
                color: Theme.secondary
            }
        }
        Card {
            id: card

            Layout.fillWidth: true
            visible: root.hasFound
            padding: 4

            RowList {
                id: list

                Layout.fillWidth: true
                rows: root.ui.scan.found
                name: Words.foundSoFar
                barsMove: true
                // At most as high as the page leaves room for.
                maximumHeight: Math.max(Theme.scaled(44), card.parent.height - card.y - 2 * card.padding)
                interactive: contentHeight > height
                displaced: Transition {
                    NumberAnimation {
                        property: "y"
                        duration: Theme.duration(200)
                        easing.type: Easing.OutCubic
                    }
                }

                // The rows keep their places under the pointer.
                HoverHandler {
                    id: pointer
                }
                Binding {
                    target: root.ui.scan
                    property: "holdsOrder"
                    value: pointer.hovered || list.activeFocus
                    restoreMode: Binding.RestoreNone
                }
            }
        }
        Item {
            Layout.fillHeight: true
        }
    }
    RowDivider {
        Layout.fillWidth: true
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: 20
        Layout.rightMargin: 20
        Layout.topMargin: 10
        Layout.bottomMargin: 10
        spacing: 12

        Label {
            Layout.fillWidth: true
            text: Words.firstScanLeave
            size: 11.5
            color: Theme.secondary
            wrapMode: Text.Wrap
        }
        SecondaryButtonStyle {
            text: Words.stop
            onClicked: root.ui.scan.stop()
        }
    }
}
