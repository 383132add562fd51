pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Spacemint.UiKit
import Spacemint.Views

/// A suggestion or a line of an account; it unfolds to its parts, if it has some.
Item {
    id: root

    required property ItemRows rows
    required property int rowId
    required property string title
    required property string subtitle
    required property string sizeText
    required property string symbol
    required property string buttonTitle
    required property string busyTitle
    required property bool isBusy
    /// Whether a click shows the item in the list of folders.
    required property bool showsChevron
    /// Null for a row without parts.
    required property ItemRows parts

    /// The QML file that shows the parts.
    property string partsView: "SuggestionParts.qml"
    property bool expanded: false
    readonly property bool canExpand: parts && parts.count > 0
    readonly property bool isButton: canExpand || showsChevron

    function press() {
        if (showsChevron)
            rows.showInFolders(rowId);
        else
            expanded = canExpand && !expanded;
    }

    Layout.fillWidth: true
    // Not in a layout, which would skip an item without a height.
    implicitHeight: header.height + unfolded.height

    // Qt overrides the role of a control, so an item around the button has the role.
    Item {
        id: header

        width: root.width
        height: Math.max(line.implicitHeight + 14, Theme.scaled(44))
        Accessible.role: root.isButton ? Accessible.Button : Accessible.StaticText
        Accessible.name: Words.spoken([root.title, root.sizeText])
        Accessible.description: root.canExpand ? Words.spokenUnfolding(root.subtitle, root.expanded) : root.subtitle
        Accessible.focusable: root.isButton
        Accessible.focused: area.activeFocus
        Accessible.onPressAction: root.press()

        T.AbstractButton {
            id: area

            anchors.fill: parent
            hoverEnabled: root.isButton
            focusPolicy: root.isButton ? Qt.StrongFocus : Qt.NoFocus
            Accessible.ignored: true
            Keys.forwardTo: [keys]
            onClicked: root.press()

            background: Rectangle {
                radius: 8
                color: Theme.hover
                opacity: area.hovered || area.visualFocus ? 1 : 0
            }
            contentItem: Item {
                GridLayout {
                    id: line

                    // With large letters the button is below the texts.
                    readonly property bool isNarrow: root.buttonTitle && button.implicitWidth + sizeLabel.implicitWidth + Theme.scaled(180) > width

                    anchors {
                        left: parent.left
                        right: parent.right
                        leftMargin: 10
                        rightMargin: 10
                        verticalCenter: parent.verticalCenter
                    }
                    columnSpacing: 10
                    rowSpacing: 4
                    columns: 5

                    Symbol {
                        Layout.column: 0
                        symbol: root.symbol
                        size: 18
                        color: Theme.secondary
                    }
                    // A positioner: in a layout, a text that wraps would change the layout's height while it is made.
                    Column {
                        Layout.column: 1
                        Layout.fillWidth: true
                        spacing: 2

                        Label {
                            width: parent.width
                            text: root.title
                            wrapMode: Text.Wrap
                            Accessible.ignored: true
                        }
                        Label {
                            width: parent.width
                            visible: text
                            text: root.subtitle
                            size: 11
                            color: Theme.secondary
                            wrapMode: Text.Wrap
                            Accessible.ignored: true
                        }
                    }
                    SecondaryButtonStyle {
                        id: button

                        Layout.row: line.isNarrow ? 1 : 0
                        Layout.column: line.isNarrow ? 1 : 2
                        Layout.columnSpan: line.isNarrow ? 2 : 1
                        visible: root.buttonTitle
                        enabled: !root.isBusy
                        text: root.isBusy ? root.busyTitle : root.buttonTitle
                        Accessible.description: root.title
                        onClicked: root.rows.pressButton(root.rowId)
                    }
                    Label {
                        id: sizeLabel

                        Layout.column: 3
                        text: root.sizeText
                        Accessible.ignored: true
                    }
                    // All rows keep the place for it if one row has it.
                    Symbol {
                        Layout.column: 4
                        visible: root.rows.hasChevrons
                        opacity: root.isButton ? 1 : 0
                        symbol: root.canExpand ? "chevron.down" : LayoutMirroring.enabled ? "chevron.left" : "chevron.right"
                        size: 13
                        color: area.hovered ? Theme.ink : Theme.secondary
                        rotation: root.expanded ? 180 : 0

                        Behavior on rotation {
                            NumberAnimation {
                                duration: Theme.duration(180)
                                easing.type: Easing.OutCubic
                            }
                        }
                    }
                }
            }

            FocusRing {
                visible: area.visualFocus
                around: 8
                anchors.margins: 0
            }
            ButtonKeys {
                id: keys

                onChosen: root.press()
            }
        }
    }
    Item {
        id: unfolded

        anchors {
            top: header.bottom
            left: parent.left
            right: parent.right
            leftMargin: Theme.scaled(18)
        }
        implicitHeight: root.expanded ? list.implicitHeight + 4 : 0
        clip: true

        Behavior on implicitHeight {
            NumberAnimation {
                duration: Theme.duration(200)
                easing.type: Easing.OutCubic
            }
        }

        LazyView {
            id: list

            width: parent.width
            view: root.partsView
            wanted: root.expanded || unfolded.height > 0
            properties: ({
                    suggestion: root
                })
        }
    }
}
