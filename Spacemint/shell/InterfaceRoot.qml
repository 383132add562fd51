import QtQuick
import Spacemint.Services
import Spacemint.Shell
import Spacemint.UiKit
import Spacemint.Views

/// What the panel and the window show: the views, over them a notice, and over all the card about the product.
FocusScope {
    id: root

    required property Ui ui
    required property AppServices services
    property string productName: ""
    property string productVersion: ""
    property bool windowed: false
    property bool rounded: true
    property bool showingAbout: false

    focus: true

    PanelView {
        id: view

        anchors.fill: parent
        enabled: !root.showingAbout
        focus: true
        ui: root.ui
        windowed: root.windowed
        rounded: root.rounded
    }
    NoticeHost {
        anchors.fill: parent
        enabled: !root.showingAbout
        notices: root.services.notices
    }
    AboutCard {
        anchors.fill: parent
        visible: root.showingAbout
        radius: view.radius
        name: root.productName
        version: root.productVersion
        onVisibleChanged: (visible ? this : view).forceActiveFocus()
        onClosed: root.showingAbout = false
    }
}
