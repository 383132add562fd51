pragma ComponentBehavior: Bound

import QtQuick
import Spacemint.UiKit
import Spacemint.Views

/// The folders from the root of the scan to the open one. Where they do not fit, a menu has the middle ones.
Item {
    id: root

    required property Explorer explorer
    readonly property var crumbs: explorer.crumbs
    /// Of each folder, with the sign behind it.
    readonly property var widths: crumbs.map(name => Math.min(widest, Math.ceil(metrics.advanceWidth(name)) + 12) + Theme.scaled(12) + 4)
    readonly property real widest: Theme.scaled(160)
    readonly property real room: width - sizeLabel.implicitWidth
    readonly property bool isLong: widths.reduce((sum, each) => sum + each, 0) > room
    /// The indices that are shown; -1 for the menu.
    readonly property var shown: {
        const all = crumbs.map((_, i) => i);
        return isLong && all.length > 3 ? [0, -1, all.length - 2, all.length - 1] : isLong && all.length > 2 ? [-1, all.length - 2, all.length - 1] : all;
    }
    /// What the others leave to the open folder.
    readonly property real lastRoom: shown.slice(0, -1).reduce((left, i) => left - (i < 0 ? Theme.scaled(40) : widths[i]), room)

    implicitHeight: line.implicitHeight

    FontMetrics {
        id: metrics

        font: Theme.text(13, Font.DemiBold)
    }
    Row {
        id: line

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        Repeater {
            model: root.shown

            Row {
                id: crumb

                required property int modelData
                readonly property bool isLast: modelData === root.crumbs.length - 1

                anchors.verticalCenter: line.verticalCenter
                spacing: 2

                QuietButtonStyle {
                    width: Math.min(implicitWidth, root.widest)
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
                    anchors.verticalCenter: parent.verticalCenter
                    visible: !crumb.isLast
                    symbol: LayoutMirroring.enabled ? "chevron.left" : "chevron.right"
                    size: 12
                    color: Theme.tertiary
                }
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, Math.max(Theme.scaled(60), root.lastRoom))
                    leftPadding: 6
                    rightPadding: 6
                    visible: crumb.isLast
                    text: root.crumbs[crumb.modelData] ?? ""
                    weight: Font.DemiBold
                    elide: Text.ElideMiddle
                    Accessible.role: Accessible.Heading
                }
            }
        }
        Label {
            id: sizeLabel

            anchors.verticalCenter: parent.verticalCenter
            leftPadding: 6
            rightPadding: 6
            text: root.explorer.sizeText
            color: Theme.secondary
        }
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
