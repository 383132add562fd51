import QtQuick
import Spacemint.Services
import Spacemint.UiKit

/// Shows the notice that there is, if any, at the bottom of what it lies over.
Item {
    id: host

    /// Null where there are no services.
    property Notices notices: null

    readonly property bool showing: notices !== null && notices.showing
    readonly property int margin: 20

    NoticeCard {
        id: card

        objectName: "noticeCard"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: host.margin
        y: host.showing ? host.height - height - host.margin : host.height
        opacity: host.showing ? 1 : 0
        visible: opacity > 0
        enabled: host.showing
        title: host.notices ? host.notices.title : ""
        body: host.notices ? host.notices.body : ""
        primary: host.notices ? host.notices.primary : ""
        secondary: host.notices ? host.notices.secondary : ""
        onClosed: host.notices.dismiss()
        onPrimaryChosen: host.notices.choosePrimary()
        onSecondaryChosen: host.notices.chooseSecondary()

        // It comes and goes by moving and fading; leaving is quicker.
        Behavior on y {
            NumberAnimation {
                duration: Theme.duration(host.showing ? 350 : 250)
                easing.type: Easing.OutCubic
            }
        }
        Behavior on opacity {
            NumberAnimation {
                duration: Theme.duration(host.showing ? 350 : 250)
                easing.type: Easing.OutCubic
            }
        }
    }
}
