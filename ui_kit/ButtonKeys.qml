import QtQuick

/// The keys of a button: Return works like Space, and a key that is held down works only once. A button forwards
/// its keys to this item.
Item {
    id: root

    /// Return was pressed.
    signal chosen

    Keys.onPressed: event => {
        const isReturn = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
        event.accepted = isReturn || event.isAutoRepeat && event.key === Qt.Key_Space;
        if (isReturn && !event.isAutoRepeat)
            root.chosen();
    }
    Keys.onReleased: event => event.accepted = event.isAutoRepeat
}
