import QtQuick
import Spacemint.UiKit

/// The logo and the name of the program.
Row {
    spacing: 7
    Accessible.role: Accessible.StaticText
    Accessible.name: name.text

    LogoMark {
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.scaled(17)
        height: width
        ink: Theme.ink
        ceiling: Theme.lavenderInk
    }
    Label {
        id: name

        anchors.verticalCenter: parent.verticalCenter
        text: "Spacemint"
        font: Theme.text(15, Font.DemiBold)
        color: Theme.ink
        Accessible.ignored: true
    }
}
