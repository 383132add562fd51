import QtQuick
import Spacemint.Services
import Spacemint.Shell
import Spacemint.UiKit
import Spacemint.Views

/// The content of the panel and of the window: the views, a notice over them, and the card about the product over all.
FocusScope {
    id: root

    required property Ui ui
    required property AppServices services
    property string productName: ""
    property string productVersion: ""
    /// Keys and their meanings in turn.
    property list<string> keyHelp
    property bool windowed: false
    property bool rounded: true
    property bool showingAbout: false

    focus: true
    // Layouts that exist already do not turn around.
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true
    // Popups are beside this item, not in it.
    onParentChanged: if (parent)
        Theme.followDirection(parent)

    PanelView {
        id: view

        anchors.fill: parent
        covered: notice.covered
        enabled: !root.showingAbout
        onEnabledChanged: {
            if (enabled)
                takeFocus();
        }
        focus: true
        ui: root.ui
        windowed: root.windowed
        rounded: root.rounded
    }
    NoticeHost {
        id: notice

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
        keyHelp: root.keyHelp
        onVisibleChanged: {
            if (visible)
                forceActiveFocus(Theme.focusReason());
        }
        onClosed: root.showingAbout = false
    }
}
