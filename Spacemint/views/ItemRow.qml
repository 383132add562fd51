pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// A row that shows a ListItem and offers its actions.
FocusScope {
    id: root

    required property ItemRows rows
    required property int rowId
    required property string title
    required property string subtitle
    required property string sizeText
    required property string symbol
    /// The share of a whole from 0 to 1, or -1 for no bar.
    required property real fraction
    /// What came or went since an earlier scan; empty for no figure.
    required property string change
    required property bool hasShrunk
    required property string tag
    required property int depth
    required property bool unfolds
    required property bool isUnfolded
    required property bool hasPath
    /// Whether the title is the name of a file, which may be cut short; every other title is a sentence.
    required property bool isNamed
    required property bool showsChevron
    required property bool canTrash
    required property bool isInTrash
    required property string buttonTitle
    required property bool isBusy
    required property bool isMarked

    property bool wrapsSubtitle: false
    property color sizeColor: Theme.ink
    property bool barMoves: false
    /// Whether the list has a column for chevrons. This row may have none.
    property bool hasChevronColumn: false
    /// Whether the list has a column for changes, which the buttons of a lit row cover.
    property bool hasChangeColumn: false
    /// The column has dates and not changes.
    property bool showsDates: false
    /// The width of the widest size in the list, as far as it is known.
    property real sizeWidth: 0
    /// A row of a tree has its chevron at its beginning, and is lower.
    property bool isInTree: false
    /// The length of the bar; 0 for all of the room.
    property real barLength: 0
    /// Whether this is the current row of its list.
    property bool isCurrent: false
    /// Whether this is the selected row of its list.
    property bool isSelected: false
    /// Whether something outside of the list points at this row.
    property bool isPointedAt: false
    readonly property bool isUnderPointer: hover.hovered
    /// At most one row is lit: the one with the keyboard focus or the one under the pointer.
    readonly property bool isLit: Theme.isKeyboardInUse ? activeFocus : hover.hovered || isPointedAt
    readonly property real roomForButtons: buttons.item && !hasChangeColumn ? buttons.width + 4 : 0
    readonly property bool mirrored: LayoutMirroring.enabled
    readonly property string spokenShare: Words.share(fraction)
    /// One width in all rows, so that all bars of a list have the same length, and its buttons are in one column.
    readonly property real leastSizeWidth: fraction >= 0 || changes.visible || buttonTitle ? Math.max(Theme.scaled(58), sizeWidth) : 0
    /// Whether the subtitle is a sentence and not a path.
    readonly property bool wraps: wrapsSubtitle || !hasPath
    /// Whether the button has no room beside the texts. Long texts get a second line before.
    readonly property bool isNarrow: buttonTitle && line.width < Theme.scaled(isInTree ? 30 : 18) + Math.min(texts.implicitWidth, Theme.scaled(180)) + button.implicitWidth + Math.max(sizeLabel.implicitWidth, leastSizeWidth) + 4 * line.columnSpacing

    /// The person clicked the row; `time` is in milliseconds.
    signal chosen(double time)
    signal menuWanted
    signal sizeWidthWanted(real width)
    /// In a tree: Return or a double click.
    signal opened
    /// The person marks this row, or all rows up to it.
    signal marking(bool isRange)

    function open() {
        if (isInTree)
            opened();
        else if (unfolds)
            rows.toggle(rowId);
        else if (showsChevron)
            rows.showInFolders(rowId);
    }

    /// Unfolds the row or folds it up, if that changes anything.
    function turn(event, unfolded: bool) {
        event.accepted = unfolds && isUnfolded !== unfolded;
        if (event.accepted)
            rows.toggle(rowId);
    }

    implicitWidth: 300
    implicitHeight: Math.max(line.implicitHeight + (isInTree ? 8 : 14), Theme.scaled(isInTree ? 36 : 44))
    Accessible.role: isInTree ? Accessible.TreeItem : Accessible.ListItem
    Accessible.name: Words.spoken([title, tag, sizeText, spokenShare === tag ? "" : spokenShare, change])
    Accessible.description: unfolds ? Words.spokenUnfolding(subtitle, isUnfolded) : subtitle
    Accessible.selectable: true
    Accessible.selected: isSelected || isMarked
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: open()
    Keys.onReturnPressed: open()
    Keys.onEnterPressed: open()
    Keys.onMenuPressed: menuWanted()
    Keys.onSpacePressed: marking(false)
    Keys.onRightPressed: event => turn(event, !mirrored)
    Keys.onLeftPressed: event => turn(event, mirrored)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier) {
            event.accepted = true;
            menuWanted();
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: Theme.lavender
        border.width: 1
        border.color: Theme.lavenderBorder
        visible: root.isMarked
    }
    Rectangle {
        anchors.fill: parent
        radius: 8
        color: root.isMarked ? "transparent" : root.isSelected ? Theme.selected : Theme.hover
        visible: root.isLit || root.isSelected

        FocusRing {
            visible: root.activeFocus && Theme.isKeyboardInUse
            around: 8
            anchors.margins: 0
        }
    }
    HoverHandler {
        id: hover
    }
    TapHandler {
        acceptedModifiers: Qt.NoModifier
        gesturePolicy: TapHandler.ReleaseWithinBounds
        onTapped: point => root.chosen(point.timestamp)
        onDoubleTapped: {
            if (root.isInTree)
                root.opened();
        }
    }
    TapHandler {
        acceptedModifiers: Qt.ControlModifier
        onTapped: root.marking(false)
    }
    TapHandler {
        acceptedModifiers: Qt.ShiftModifier
        onTapped: root.marking(true)
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: root.menuWanted()
    }
    GridLayout {
        id: line

        anchors {
            left: parent.left
            right: parent.right
            leftMargin: 10 + Theme.scaled(18) * root.depth
            rightMargin: 10
            verticalCenter: parent.verticalCenter
        }
        columnSpacing: root.isInTree ? 8 : 10
        rowSpacing: 4
        columns: 7

        // A click on it only unfolds the row.
        Item {
            Layout.column: 0
            visible: root.isInTree
            implicitWidth: Theme.scaled(12)
            implicitHeight: Theme.scaled(24)

            Symbol {
                anchors.centerIn: parent
                visible: root.unfolds
                symbol: root.mirrored ? "chevron.left" : "chevron.right"
                size: 12
                color: chevron.hovered ? Theme.ink : Theme.secondary
                rotation: root.isUnfolded ? (root.mirrored ? -90 : 90) : 0

                Behavior on rotation {
                    NumberAnimation {
                        duration: Theme.duration(180)
                        easing.type: Easing.OutCubic
                    }
                }
            }
            HoverHandler {
                id: chevron

                margin: 6
            }
            TapHandler {
                margin: 6
                gesturePolicy: TapHandler.ReleaseWithinBounds
                onTapped: root.rows.toggle(root.rowId)
            }
        }
        Item {
            Layout.column: 1
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
                properties: ({
                        what: Words.working
                    })
            }
        }
        Item {
            Layout.column: 2
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

                Item {
                    readonly property real room: width - root.roomForButtons - (root.tag ? tagLabel.implicitWidth + 6 : 0)

                    Layout.fillWidth: true
                    implicitWidth: nameLabel.implicitWidth
                    implicitHeight: nameLabel.implicitHeight

                    Label {
                        id: nameLabel

                        anchors.left: parent.left
                        width: root.tag ? Math.min(implicitWidth, parent.room) : parent.room
                        text: root.title
                        elide: root.isNamed ? Text.ElideMiddle : Text.ElideNone
                        wrapMode: root.isNamed ? Text.NoWrap : Text.Wrap
                        Accessible.ignored: true
                    }
                    Label {
                        id: tagLabel

                        anchors.left: nameLabel.left
                        anchors.leftMargin: nameLabel.contentWidth + 6
                        anchors.baseline: nameLabel.baseline
                        text: root.tag
                        size: 11
                        color: Theme.secondary
                        Accessible.ignored: true
                    }
                }
                Label {
                    Layout.fillWidth: true
                    Layout.rightMargin: root.roomForButtons
                    visible: root.subtitle
                    text: root.subtitle
                    size: 11
                    color: Theme.secondary
                    elide: root.wraps ? Text.ElideNone : Text.ElideMiddle
                    wrapMode: root.wraps ? Text.Wrap : Text.NoWrap
                    Accessible.ignored: true
                }
                UsageBar {
                    Layout.fillWidth: true
                    Layout.maximumWidth: root.barLength || Infinity
                    Layout.topMargin: root.isInTree ? 1 : 3
                    visible: root.fraction >= 0
                    fraction: Math.max(0, root.fraction)
                    color: root.barLength && !root.hasShrunk ? Theme.amber : Theme.teal
                    moves: root.barMoves
                    implicitHeight: 3
                    Accessible.ignored: true
                }
            }
            // At the end of the texts, which are cut short for it; or in the column of changes, which it covers. All else
            // stays where it is.
            LazyView {
                id: buttons

                parent: root.hasChangeColumn ? changes : texts.parent
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
        Item {
            id: changes

            Layout.column: 3
            // A row that is no item and has no bar needs the room for its words.
            visible: root.hasChangeColumn && (root.hasPath || root.change || root.fraction >= 0)
            implicitWidth: Theme.scaled(58)
            implicitHeight: figure.implicitHeight

            Label {
                id: figure

                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: !buttons.item
                text: root.change
                size: 12
                color: root.showsDates ? Theme.secondary : root.hasShrunk ? Theme.teal : Theme.amberInk
                Accessible.ignored: true
            }
        }
        SecondaryButtonStyle {
            id: button

            Layout.row: root.isNarrow ? 1 : 0
            Layout.column: root.isNarrow ? 2 : 4
            Layout.columnSpan: root.isNarrow ? 3 : 1
            visible: root.buttonTitle
            enabled: !root.isBusy
            text: root.buttonTitle
            focusPolicy: root.isCurrent ? Qt.StrongFocus : Qt.ClickFocus
            Accessible.description: root.title
            onClicked: root.rows.pressButton(root.rowId)
        }
        Label {
            id: sizeLabel

            Layout.column: 5
            Layout.minimumWidth: root.leastSizeWidth
            onImplicitWidthChanged: root.sizeWidthWanted(implicitWidth)
            visible: root.sizeText
            text: root.sizeText
            color: root.hasShrunk && !root.hasChangeColumn ? Theme.teal : root.isBusy ? Theme.secondary : root.sizeColor
            horizontalAlignment: Text.AlignRight
            Accessible.ignored: true
        }
        Item {
            Layout.column: 6
            visible: root.hasChevronColumn && !root.isInTree
            implicitWidth: Theme.scaled(12)
            implicitHeight: Theme.scaled(24)

            Symbol {
                anchors.centerIn: parent
                visible: root.showsChevron || root.unfolds
                symbol: root.unfolds ? "chevron.down" : root.mirrored ? "chevron.left" : "chevron.right"
                size: 13
                color: hover.hovered ? Theme.ink : Theme.secondary
                rotation: root.isUnfolded ? 180 : 0

                Behavior on rotation {
                    NumberAnimation {
                        duration: Theme.duration(180)
                        easing.type: Easing.OutCubic
                    }
                }
            }
        }
    }
}
