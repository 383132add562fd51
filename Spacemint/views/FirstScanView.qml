import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The page during the first scan: what it has found so far.
Item {
    id: root

    required property Ui ui
    readonly property bool hasFound: ui.scan.found.count > 0

    ColumnLayout {
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.topMargin: 20
        anchors.bottomMargin: 20 + footer.height
        width: Math.min(parent.width - 40, Theme.scaled(640))
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
                // A row that overtakes others fades in at its new place, and these make way.
                add: Transition {
                    NumberAnimation {
                        property: "opacity"
                        from: 0
                        to: 1
                        duration: Theme.duration(200)
                    }
                }
                displaced: Transition {
                    NumberAnimation {
                        property: "y"
                        duration: Theme.duration(200)
                        easing.type: Easing.OutCubic
                    }
                    // Where this ends the one above.
                    NumberAnimation {
                        property: "opacity"
                        to: 1
                        duration: Theme.duration(200)
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
    Item {
        id: footer

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: Math.max(leave.height, stop.height) + 20

        RowDivider {
            anchors.left: parent.left
            anchors.right: parent.right
        }
        Label {
            id: leave

            anchors.left: parent.left
            anchors.leftMargin: 20
            anchors.right: stop.left
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            text: Words.firstScanLeave
            size: 11.5
            color: Theme.secondary
            wrapMode: Text.Wrap
        }
        SecondaryButtonStyle {
            id: stop

            anchors.right: parent.right
            anchors.rightMargin: 20
            anchors.verticalCenter: parent.verticalCenter
            text: Words.stop
            onClicked: root.ui.scan.stop()
        }
    }
}
