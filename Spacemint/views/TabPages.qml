import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The tabs. A tab is made when it is first shown, and keeps its state.
ColumnLayout {
    id: root

    required property Ui ui

    spacing: 0

    TabBar {
        Layout.fillWidth: true
        Layout.margins: 20
        Layout.topMargin: 14
        Layout.bottomMargin: 12
        titles: root.ui.page.tabTitles
        currentIndex: root.ui.page.tabIndex
        onActivated: index => root.ui.page.tabIndex = index
    }
    RowDivider {
        Layout.fillWidth: true
    }
    TabStack {
        Layout.fillWidth: true
        Layout.fillHeight: true
        ui: root.ui
    }
}
