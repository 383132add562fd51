import QtQuick

/// The title of a section.
Label {
    property string title

    text: title
    weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
