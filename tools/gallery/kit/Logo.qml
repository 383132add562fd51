import QtQuick
import Spacemint.UiKit

Row {
    spacing: 24

    Repeater {
        model: [16, 17, 32, 64, 128]

        LogoMark {
            required property int modelData

            anchors.verticalCenter: parent.verticalCenter
            width: modelData
            height: modelData
            ink: Theme.ink
            ceiling: Theme.lavenderInk
        }
    }
    Wordmark {
        anchors.verticalCenter: parent.verticalCenter
    }
}
