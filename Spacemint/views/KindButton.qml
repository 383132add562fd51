import QtQuick
import QtQuick.Templates as T
import Spacemint.UiKit
import Spacemint.Views

/// The button of one kind of file, with the colour that it has in the strip.
T.Button {
    id: root

    property string title
    property string sizeText
    property color colour
    property real strength: 1

    hoverEnabled: true
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 8
    verticalPadding: 4
    // Qt 6.4 takes it for a button whatever this says; later versions do not.
    Accessible.role: Accessible.Button
    Accessible.name: Words.spoken([title, sizeText])
    Accessible.checkable: true
    Accessible.checked: checked
    Keys.forwardTo: [keys]

    contentItem: Row {
        spacing: 6

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 8
            height: 8
            radius: 4
            color: root.colour
            opacity: root.strength
        }
        Label {
            text: root.title
            size: 11
            Accessible.ignored: true
        }
        Label {
            text: root.sizeText
            size: 11
            color: Theme.secondary
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: 7
        color: root.checked ? Theme.selected : root.hovered ? Theme.hover : "transparent"
        border.width: 1
        border.color: root.checked ? root.colour : Theme.border

        FocusRing {
            visible: root.visualFocus
            around: parent.radius
        }
    }

    ButtonKeys {
        id: keys

        onChosen: root.clicked()
    }
}
