import QtQuick

/// The keys of a button: Return does what Space does, and a key that is held does it once. The button forwards
/// its keys here.
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
