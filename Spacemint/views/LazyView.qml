import QtQuick

/// Makes a view of the file `view` while it is wanted. What rows unfold is written in files of their own and made
/// here, because a row cannot load a component that stands inside of it.
Loader {
    id: root

    required property string view
    required property bool wanted
    /// The properties that the view is made with.
    property var properties: ({})

    function load() {
        if (wanted)
            setSource(view, properties);
        else
            source = "";
    }

    onWantedChanged: load()
    Component.onCompleted: load()
}
