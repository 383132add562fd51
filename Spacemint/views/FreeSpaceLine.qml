import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The free space over time. A click, or an arrow key, chooses the scan that is compared with.
Item {
    id: root

    required property SpaceHistory history
    property real lineHeight: 48
    // What Qt's interface for the values of a slider reads.
    property int value: history.chosen
    property int minimumValue: 0
    property int maximumValue: history.count - 1

    implicitWidth: 300
    implicitHeight: lineHeight + Theme.scaled(16)
    activeFocusOnTab: history.count > 0
    visible: history.isKnown
    Accessible.role: history.count > 0 ? Accessible.Slider : Accessible.StaticText
    Accessible.name: history.count > 0 ? Words.comparedWith : history.text
    Accessible.description: history.chosenText
    Accessible.ignored: !Accessible.name
    Accessible.focusable: activeFocusOnTab
    Keys.onPressed: event => {
        const right = LayoutMirroring.enabled ? -1 : 1;
        const places = new Map([[Qt.Key_Left, history.chosen - right], [Qt.Key_Right, history.chosen + right], [Qt.Key_Home, 0], [Qt.Key_End, history.count - 1]]);
        event.accepted = places.has(event.key);
        if (event.accepted)
            history.choose(places.get(event.key));
    }

    FreeLine {
        id: line

        anchors.fill: parent
        history: root.history
        mirrored: LayoutMirroring.enabled
        lineHeight: root.lineHeight
    }
    Label {
        y: (root.lineHeight - height) / 2
        width: parent.width
        wrapMode: Text.Wrap
        visible: text
        text: root.history.text
        size: 12
        color: Theme.secondary
    }
    Item {
        x: line.pointedAt.x
        y: line.pointedAt.y

        Help {
            text: root.history.help(line.pointed)
            wanted: line.pointed >= 0
            delay: 0
            y: -height - 8
        }
    }
    FocusRing {
        visible: root.activeFocus && Theme.isKeyboardInUse
    }
}
