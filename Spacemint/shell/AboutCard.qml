import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

/// Says what the product is.
FocusScope {
    id: root

    property string name: ""
    property string version: ""
    /// Of the corners of what it covers.
    property real radius: 0

    signal closed

    focus: true
    Accessible.role: Accessible.Dialog
    Accessible.name: "About " + name
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
        width: Math.min(parent.width - 48, Theme.scaled(300))
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
                text: "Version " + root.version
                size: 12
                color: Theme.secondary
            }
            Label {
                Layout.fillWidth: true
                Layout.topMargin: 6
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: "Watches free space and says what takes it. Free software under the MIT licence."
                size: 12
                color: Theme.secondary
            }
            SecondaryButtonStyle {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 10
                focus: true
                text: "Close"
                onClicked: root.closed()
            }
        }
    }
}
