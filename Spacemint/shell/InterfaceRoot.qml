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
    property bool showingAbout: false

    focus: true

    PanelView {
        id: view

        anchors.fill: parent
        enabled: !root.showingAbout
        focus: true
        ui: root.ui
        windowed: root.windowed
    }
    NoticeHost {
        anchors.fill: parent
        enabled: !root.showingAbout
        notices: root.services.notices
    }
    Loader {
        anchors.fill: parent
        active: root.showingAbout
        onLoaded: item.forceActiveFocus()
        onActiveChanged: if (!active) view.forceActiveFocus()
        sourceComponent: AboutCard {
            radius: view.radius
            name: root.productName
            version: root.productVersion
            onClosed: root.showingAbout = false
        }
    }
}
