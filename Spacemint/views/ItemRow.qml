pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// One thing that takes space, with what can be done with it.
FocusScope {
    id: root

    required property ItemRows rows
    required property int rowId
    required property string title
    required property string subtitle
    required property string sizeText
    required property string symbol
    /// Its part of a whole, or -1.
    required property real fraction
    required property bool hasPath
    required property bool showsChevron
    required property bool canTrash
    required property bool isInTrash
    required property string buttonTitle
    required property bool isBusy

    property bool wrapsSubtitle: false
    property color sizeColor: Theme.ink
    /// Whether there is room for a chevron, also where this row has none.
    property bool hasChevronColumn: false
    /// Whether the keyboard is here.
    property bool isCurrent: false
    property bool showsFocus: true

    readonly property bool isLit: hover.hovered || activeFocus
    readonly property bool mirrored: LayoutMirroring.enabled

    /// The person clicks the row, at this time in milliseconds.
    signal chosen(double time)
    signal menuWanted(bool byMouse)

    function open() {
        if (showsChevron)
            rows.showInFolders(rowId);
    }

    implicitWidth: 300
    implicitHeight: Math.max(line.implicitHeight + 14, Theme.scaled(44))
    Accessible.role: Accessible.ListItem
    Accessible.name: sizeText ? `${title}, ${sizeText}` : title
    Accessible.description: subtitle
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: open()
    Keys.onReturnPressed: open()
    Keys.onEnterPressed: open()
    Keys.onMenuPressed: menuWanted(false)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier) {
            event.accepted = true;
            menuWanted(false);
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: Theme.hover
        visible: root.isLit

        FocusRing {
            visible: root.activeFocus && root.showsFocus
            around: 8
            anchors.margins: 0
        }
    }
    HoverHandler {
        id: hover
    }
    TapHandler {
        gesturePolicy: TapHandler.ReleaseWithinBounds
        onTapped: point => root.chosen(point.timestamp)
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: root.menuWanted(true)
    }
    RowLayout {
        id: line

        anchors {
            left: parent.left
            right: parent.right
            leftMargin: 10
            rightMargin: 10
            verticalCenter: parent.verticalCenter
        }
        spacing: 10

        Item {
            implicitWidth: Theme.scaled(18)
            implicitHeight: Theme.scaled(18)

            Symbol {
                anchors.centerIn: parent
                visible: !root.isBusy
                symbol: root.symbol
                size: 17
                color: Theme.secondary
            }
            LazyView {
                anchors.centerIn: parent
                view: "qrc:/qt/qml/Spacemint/UiKit/Spinner.qml"
                wanted: root.isBusy
            }
        }
        Item {
            Layout.fillWidth: true
            implicitHeight: texts.implicitHeight

            ColumnLayout {
                id: texts

                anchors {
                    left: parent.left
                    right: parent.right
                    verticalCenter: parent.verticalCenter
                }
                spacing: 2

                Label {
                    Layout.fillWidth: true
                    text: root.title
                    // What is no name of a file is a sentence, and is shown in full.
                    elide: root.hasPath ? Text.ElideMiddle : Text.ElideNone
                    wrapMode: root.hasPath ? Text.NoWrap : Text.Wrap
                    // Also of a name that is written from right to left.
                    horizontalAlignment: Text.AlignLeft
                    Accessible.ignored: true
                }
                Label {
                    Layout.fillWidth: true
                    visible: root.subtitle
                    text: root.subtitle
                    size: 11
                    color: Theme.secondary
                    elide: root.wrapsSubtitle ? Text.ElideNone : Text.ElideMiddle
                    wrapMode: root.wrapsSubtitle ? Text.Wrap : Text.NoWrap
                    horizontalAlignment: Text.AlignLeft
                    Accessible.ignored: true
                }
                UsageBar {
                    Layout.fillWidth: true
                    Layout.topMargin: 3
                    visible: root.fraction >= 0
                    fraction: Math.max(0, root.fraction)
                    color: Theme.teal
                    implicitHeight: 3
                    Accessible.ignored: true
                }
            }
            // Over the end of the texts, so that nothing moves when it appears.
            LazyView {
                anchors {
                    right: parent.right
                    verticalCenter: parent.verticalCenter
                }
                view: "ItemButtons.qml"
                wanted: root.isLit && root.hasPath
                properties: ({
                        row: root
                    })
            }
        }
        Label {
            // Bars below each other are as long as each other.
            Layout.minimumWidth: root.fraction >= 0 ? Theme.scaled(58) : 0
            visible: root.sizeText
            text: root.sizeText
            color: root.sizeColor
            horizontalAlignment: Text.AlignRight
            Accessible.ignored: true
        }
        SecondaryButtonStyle {
            visible: root.buttonTitle
            enabled: !root.isBusy
            text: root.buttonTitle
            focusPolicy: root.isCurrent ? Qt.StrongFocus : Qt.ClickFocus
            Accessible.description: root.title
            onClicked: root.rows.pressButton(root.rowId)
        }
        Item {
            visible: root.hasChevronColumn
            implicitWidth: Theme.scaled(12)
            implicitHeight: Theme.scaled(24)

            Symbol {
                anchors.centerIn: parent
                visible: root.showsChevron
                symbol: root.mirrored ? "chevron.left" : "chevron.right"
                size: 13
                color: hover.hovered ? Theme.ink : Theme.tertiary
            }
        }
    }
}
