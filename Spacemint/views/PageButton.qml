import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Spacemint.UiKit

/// A page in the side of a large window.
// Qt overrides the role of a control, so an item around the button has the role of a tab.
Item {
    id: root

    property string text
    property string symbol
    property bool isSelected: false

    signal chosen

    implicitHeight: Theme.scaled(30)
    Accessible.role: Accessible.PageTab
    Accessible.name: text
    Accessible.selected: isSelected
    Accessible.focusable: true
    Accessible.focused: button.activeFocus
    Accessible.onPressAction: chosen()

    T.AbstractButton {
        id: button

        anchors.fill: parent
        hoverEnabled: true
        Accessible.ignored: true
        Keys.forwardTo: [keys]
        onClicked: root.chosen()

        background: Rectangle {
            radius: 7
            color: root.isSelected ? Theme.selected : button.hovered ? Theme.hover : "transparent"

            FocusRing {
                visible: button.visualFocus
                around: 7
                outside: 0
            }
        }
        contentItem: RowLayout {
            spacing: 9

            Symbol {
                Layout.leftMargin: 9
                symbol: root.symbol
                size: 15
                color: root.isSelected ? Theme.ink : Theme.secondary
            }
            Label {
                Layout.fillWidth: true
                text: root.text
                weight: root.isSelected ? Font.DemiBold : Font.Normal
                color: root.isSelected || button.hovered ? Theme.ink : Theme.secondary
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        ButtonKeys {
            id: keys

            onChosen: root.chosen()
        }
    }
}
