pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The folders from the root of the scan to the open one. Where they do not fit, a menu has the middle ones.
RowLayout {
    id: root

    required property Explorer explorer
    readonly property var crumbs: explorer.crumbs
    readonly property bool isLong: whole.implicitWidth > width - Theme.scaled(90)
    /// The indices that are shown; -1 for the menu.
    readonly property list<int> shown: {
        const all = crumbs.map((_, i) => i);
        return isLong && all.length > 3 ? [0, -1, all.length - 2, all.length - 1] : isLong && all.length > 2 ? [-1, all.length - 2, all.length - 1] : all;
    }

    spacing: 2

    // Invisible: as wide as all folders together.
    Row {
        id: whole

        visible: false
        spacing: root.spacing

        Repeater {
            model: root.crumbs

            QuietButtonStyle {
                required property string modelData

                text: modelData
                size: 13
                rightPadding: 24
            }
        }
    }
    Repeater {
        model: root.shown

        RowLayout {
            id: crumb

            required property int index
            required property int modelData
            readonly property bool isLast: modelData === root.crumbs.length - 1

            spacing: root.spacing
            Layout.fillWidth: isLast
            Layout.maximumWidth: implicitWidth + 1

            QuietButtonStyle {
                Layout.maximumWidth: Theme.scaled(160)
                visible: !crumb.isLast
                text: crumb.modelData < 0 ? "…" : root.crumbs[crumb.modelData] ?? ""
                size: 13
                onClicked: {
                    if (crumb.modelData < 0)
                        middle.popup(this, 0, height + 4);
                    else
                        root.explorer.openCrumb(crumb.modelData);
                }
            }
            Symbol {
                visible: !crumb.isLast
                symbol: LayoutMirroring.enabled ? "chevron.left" : "chevron.right"
                size: 12
                color: Theme.tertiary
            }
            Label {
                Layout.fillWidth: true
                Layout.leftMargin: 6
                visible: crumb.isLast
                text: root.crumbs[crumb.modelData] ?? ""
                weight: Font.DemiBold
                elide: Text.ElideMiddle
                Accessible.role: Accessible.Heading
            }
        }
    }
    Label {
        Layout.leftMargin: 10
        text: root.explorer.sizeText
        color: Theme.secondary
    }
    Item {
        Layout.fillWidth: true
    }
    MenuPopup {
        id: middle

        Repeater {
            model: root.isLong ? Math.max(0, root.crumbs.length - 2) : 0

            MenuEntry {
                required property int index

                text: root.crumbs[index] ?? ""
                symbol: "folder"
                onTriggered: root.explorer.openCrumb(index)
            }
        }
    }
}
