import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

/// A column that scrolls if it is too high. Its children are in a ColumnLayout.
Flickable {
    id: root

    property real padding: 0
    /// A wide column leaves the rest of its width free.
    property real maximumWidth: Infinity
    property alias spacing: column.spacing
    default property alias content: column.data
    property real heightBefore: 0

    /// Scrolls as little as needed to show all of an item of the column.
    function show(item: Item) {
        const top = item.mapToItem(contentItem, 0, 0).y;
        scrollTo(Math.max(top + item.height + 8 - height, Math.min(contentY, top - 8)));
    }

    /// The item of the column with the keyboard focus, or null.
    function focusedItem() : Item {
        const item = Window.window?.activeFocusItem ?? null;
        for (let parent = item?.parent; parent; parent = parent.parent) {
            if (parent === column)
                return item;
        }
        return null;
    }

    function scrollTo(y: real) {
        contentY = Math.max(0, Math.min(y, contentHeight - height));
    }

    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    contentWidth: width
    contentHeight: column.implicitHeight + 2 * padding
    boundsBehavior: Flickable.StopAtBounds
    flickableDirection: Flickable.VerticalFlick
    clip: true
    Keys.onPressed: event => {
        const page = height - 40;
        const targets = new Map([[Qt.Key_PageUp, contentY - page], [Qt.Key_PageDown, contentY + page], [Qt.Key_Home, 0], [Qt.Key_End, contentHeight]]);
        event.accepted = targets.has(event.key);
        if (event.accepted)
            scrollTo(targets.get(event.key));
    }

    // The focused item stays in view when a banner takes some of the height.
    onHeightChanged: {
        const item = focusedItem();
        const wasInView = item && item.mapToItem(contentItem, 0, item.height).y <= contentY + heightBefore;
        heightBefore = height;
        if (wasInView)
            show(item);
    }

    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() {
            const item = root.focusedItem();
            if (item)
                root.show(item);
        }
    }
    ColumnLayout {
        id: column

        x: LayoutMirroring.enabled ? root.width - width - root.padding : root.padding
        y: root.padding
        width: Math.min(root.width - 2 * root.padding, root.maximumWidth)
        spacing: 8
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar

        hoverEnabled: true
        implicitWidth: 10
        padding: 2
        minimumSize: 0.08
        visible: size < 1
        Accessible.ignored: true

        contentItem: Rectangle {
            implicitWidth: 6
            radius: 3
            color: Theme.tertiary
            opacity: bar.pressed ? 0.9 : bar.hovered || bar.active ? 0.6 : 0.25

            Behavior on opacity {
                NumberAnimation {
                    duration: Theme.duration(150)
                }
            }
        }
    }
}
