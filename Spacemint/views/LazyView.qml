import QtQuick

/// Loads the view in the file `view` while `wanted` is true. It takes the name of a file, because a row cannot load a
/// component that contains rows from its own file.
Loader {
    id: root

    required property string view
    required property bool wanted
    /// The initial properties of the view.
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
