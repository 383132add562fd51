import QtQuick

/// The title over a group of things.
Label {
    property string title

    text: title
    weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
