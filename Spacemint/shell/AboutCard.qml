pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// Says what the product is, and which keys it understands.
FocusScope {
    id: root

    property string name: ""
    property string version: ""
    /// Keys and their meanings in turn.
    property list<string> keyHelp
    /// The corner radius of what the card covers.
    property real radius: 0

    signal closed

    focus: true
    Accessible.role: Accessible.Dialog
    Accessible.name: Words.aboutProduct(name)
    Keys.onEscapePressed: closed()

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: Theme.backdrop

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onClicked: root.closed()
            onWheel: wheel => wheel.accepted = true
        }
    }
    PopupSurface {
        anchors.centerIn: parent
        width: Math.min(parent.width - 48, Theme.scaled(380))
        height: Math.min(parent.height - 48, column.implicitHeight + 44)
        radius: 14

        MouseArea {
            anchors.fill: parent
        }
        ColumnLayout {
            id: column

            anchors.fill: parent
            anchors.margins: 22
            spacing: 6

            LogoMark {
                Layout.alignment: Qt.AlignHCenter
                implicitWidth: 56
                implicitHeight: 56
                ink: Theme.ink
                ceiling: Theme.lavenderInk
            }
            Label {
                Layout.fillWidth: true
                Layout.topMargin: 8
                horizontalAlignment: Text.AlignHCenter
                text: root.name
                size: 18
                weight: Font.DemiBold
            }
            Label {
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignHCenter
                text: Words.version(root.version)
                size: 12
                color: Theme.secondary
            }
            Label {
                Layout.fillWidth: true
                Layout.topMargin: 6
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: Words.aboutLine
                size: 12
                color: Theme.secondary
            }
            RowDivider {
                Layout.fillWidth: true
                Layout.topMargin: 10
                Layout.bottomMargin: 6
            }
            // Scrolls where letters are large.
            ScrollColumn {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.preferredHeight: keys.implicitHeight
                padding: 0

                GridLayout {
                    id: keys

                    Layout.fillWidth: true
                    columns: 2
                    columnSpacing: 14
                    rowSpacing: 5

                    Repeater {
                        model: root.keyHelp

                        Label {
                            required property int index
                            required property string modelData

                            Layout.fillWidth: index % 2 === 1
                            Layout.alignment: Qt.AlignTop
                            text: modelData
                            size: 11.5
                            weight: index % 2 === 0 ? Font.DemiBold : Font.Normal
                            color: index % 2 === 0 ? Theme.ink : Theme.secondary
                            wrapMode: Text.Wrap
                        }
                    }
                }
            }
            SecondaryButtonStyle {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 10
                focus: true
                text: Words.close
                onClicked: root.closed()
            }
        }
    }
}
