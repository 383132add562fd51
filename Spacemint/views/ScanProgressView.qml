import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit
import Spacemint.Views

/// The progress of a scan.
ColumnLayout {
    id: root

    required property Ui ui
    /// The smaller form for the footer.
    property bool compact: false

    spacing: compact ? 5 : 8

    Item {
        id: words

        /// Whether both texts have room in one line.
        readonly property bool fit: title.implicitWidth + 8 + detail.implicitWidth <= width

        Layout.fillWidth: true
        implicitHeight: fit ? Math.max(title.implicitHeight, detail.implicitHeight) : title.implicitHeight + 2 + detail.implicitHeight

        Label {
            id: title

            anchors.left: parent.left
            text: root.ui.scan.title
            size: root.compact ? 11.5 : 13
            weight: Font.Medium
            Accessible.ignored: true
        }
        Label {
            id: detail

            anchors.left: words.fit ? title.right : parent.left
            anchors.leftMargin: words.fit ? 8 : 0
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            text: root.ui.scan.detail
            size: root.compact ? 11.5 : 12
            color: Theme.secondary
            horizontalAlignment: words.fit ? Text.AlignRight : Text.AlignLeft
            wrapMode: Text.Wrap
        }
    }
    ProgressBar {
        Layout.fillWidth: true
        fraction: root.ui.scan.fraction
        implicitHeight: root.compact ? 4 : 6
        text: root.ui.scan.title
    }
    Timer {
        interval: 1000
        repeat: true
        running: Theme.isSeen(root) && root.ui.scan.scanning
        onTriggered: root.ui.scan.refresh()
    }
}
