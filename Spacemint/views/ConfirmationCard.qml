pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The question before something is removed, over the page.
FocusScope {
    id: root

    required property Ui ui
    /// The corner radius of the page below.
    property real radius: 0
    /// The id of the question that is shown. A button answers this question only.
    readonly property string asked: ui.confirmation.uuid

    focus: true
    Accessible.role: Accessible.Dialog
    Accessible.name: ui.confirmation.title
    Keys.onEscapePressed: ui.confirmation.dismiss()

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: Theme.backdrop

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onClicked: root.ui.confirmation.dismiss()
            onWheel: wheel => wheel.accepted = true
        }
    }
    PopupSurface {
        id: card

        anchors.centerIn: parent
        width: Math.min(parent.width - 48, Theme.scaled(380))
        height: Math.min(parent.height - 48, column.implicitHeight + 40)
        radius: 14

        MouseArea {
            anchors.fill: parent
        }
        ColumnLayout {
            id: column

            anchors.fill: parent
            anchors.margins: 20
            spacing: 8

            Label {
                Layout.fillWidth: true
                text: root.ui.confirmation.title
                size: 16
                weight: Font.DemiBold
                wrapMode: Text.Wrap
            }
            Label {
                Layout.fillWidth: true
                Layout.topMargin: 4
                text: root.ui.confirmation.subject
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                maximumLineCount: 8
                horizontalAlignment: Text.AlignLeft
                elide: Text.ElideRight
            }
            Label {
                Layout.fillWidth: true
                visible: text
                text: root.ui.confirmation.detail
                size: 11.5
                color: Theme.secondary
                elide: Text.ElideMiddle
                horizontalAlignment: Text.AlignLeft
            }
            ListView {
                id: items

                function scroll(way: real) {
                    contentY = Math.max(originY, Math.min(contentY + way, originY + contentHeight - height));
                }

                Layout.fillWidth: true
                Layout.fillHeight: true
                // Room for the ring of the keyboard.
                Layout.leftMargin: -6
                Layout.rightMargin: -6
                Layout.preferredHeight: Math.min(contentHeight, Theme.scaled(170))
                Layout.minimumHeight: Math.min(contentHeight, Theme.scaled(40))
                visible: count > 0
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                model: root.ui.confirmation.items
                interactive: contentHeight > height
                activeFocusOnTab: interactive
                Keys.onDownPressed: scroll(Theme.scaled(40))
                Keys.onUpPressed: scroll(-Theme.scaled(40))
                Accessible.role: Accessible.List
                Accessible.name: root.ui.confirmation.subject

                FocusRing {
                    parent: items
                    visible: items.activeFocus && Theme.isKeyboardInUse
                    around: 4
                    outside: 0
                }
                delegate: Label {
                    required property string modelData

                    width: ListView.view.width
                    leftPadding: 6
                    rightPadding: 6
                    text: modelData
                    size: 12
                    elide: Text.ElideMiddle
                    bottomPadding: 3
                    Accessible.role: Accessible.ListItem
                }
            }
            RowLayout {
                Layout.topMargin: 2
                visible: root.ui.confirmation.warning
                spacing: 8

                Symbol {
                    Layout.alignment: Qt.AlignTop
                    Layout.topMargin: 1
                    symbol: "exclamationmark.triangle.fill"
                    size: 14
                    color: Theme.warning
                }
                Label {
                    Layout.fillWidth: true
                    text: root.ui.confirmation.warning
                    size: 12
                    wrapMode: Text.Wrap
                }
            }
            Label {
                Layout.fillWidth: true
                text: root.ui.confirmation.note
                size: 12
                color: Theme.secondary
                wrapMode: Text.Wrap
            }
            RowLayout {
                Layout.topMargin: 10
                spacing: 8

                Item {
                    Layout.fillWidth: true
                }
                SecondaryButtonStyle {
                    id: cancel

                    Layout.fillHeight: true
                    focus: true
                    text: Words.cancel
                    onClicked: root.ui.confirmation.dismiss()
                }
                PrimaryButtonStyle {
                    text: root.ui.confirmation.actionTitle
                    onClicked: root.ui.confirmation.perform(root.asked)
                }
            }
        }
    }
    // Return means the action, unless the person moved to Cancel with the keyboard.
    Shortcut {
        sequences: ["Return", "Enter"]
        // A key that is still held down since it opened the question does not answer it.
        autoRepeat: false
        enabled: !cancel.visualFocus
        onActivated: root.ui.confirmation.perform(root.asked)
    }
}
