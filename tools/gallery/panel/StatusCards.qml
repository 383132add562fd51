import QtQuick
import QtQuick.Layouts
import Spacemint.Views

ColumnLayout {
    spacing: 16

    StatusCard {
        Layout.preferredWidth: 420
        text: "Asking Docker what it keeps…"
        busy: true
    }
    StatusCard {
        Layout.preferredWidth: 420
        text: "Start Docker to see what can be cleaned up."
    }
    StatusCard {
        Layout.preferredWidth: 420
        text: "Docker didn't answer: Cannot connect to the Docker daemon at unix:///var/run/docker.sock. Is the docker daemon running?"
    }
    ActionCard {
        Layout.preferredWidth: 420
        symbol: "lock"
        title: "See the whole disk"
        line: "Some folders are closed to Spacemint and can't be measured."
    }
}
