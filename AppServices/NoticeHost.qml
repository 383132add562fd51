import QtQuick
import Spacemint.Services
import Spacemint.UiKit

/// Shows the current notice, if any, as a card at the bottom.
Item {
    id: host

    /// Null where there are no services.
    property Notices notices: null

    readonly property bool showing: notices !== null && notices.showing
    readonly property int margin: 20
    /// How far the card has come: from 0 to 1. Disappearing is quicker. The card's place follows from this property,
    /// so that the card does not move when the window gets its size.
    property real shown: showing ? 1 : 0
    /// The height at the bottom that the card covers. What is below ends above it, so that it stays within reach.
    readonly property real covered: shown * (card.height + margin + 8)

    Behavior on shown {
        NumberAnimation {
            duration: Theme.duration(host.showing ? 350 : 250)
            easing.type: Easing.OutCubic
        }
    }

    // What the card covers gets no clicks.
    MouseArea {
        anchors.fill: card
        enabled: host.showing
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }
    NoticeCard {
        id: card

        objectName: "noticeCard"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.margins: host.margin
        y: host.height - host.shown * (height + host.margin)
        opacity: host.shown
        visible: opacity > 0
        enabled: host.showing
        title: host.notices ? host.notices.title : ""
        body: host.notices ? host.notices.body : ""
        primary: host.notices ? host.notices.primary : ""
        secondary: host.notices ? host.notices.secondary : ""
        closeHelp: host.notices ? host.notices.closeHelp : ""
        onClosed: host.notices.dismiss()
        onPrimaryChosen: host.notices.choosePrimary()
        onSecondaryChosen: host.notices.chooseSecondary()
    }
}
