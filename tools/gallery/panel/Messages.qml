import QtQuick
import QtQuick.Layouts
import Spacemint.Views

ColumnLayout {
    spacing: 16

    MessageBanner {
        Layout.preferredWidth: 420
        text: "Emptied the Trash and freed 2.4 GB."
    }
    MessageBanner {
        Layout.preferredWidth: 420
        text: "Some items, like hidden ones, are still in the Trash. Some folders are closed to Spacemint."
        action: "Open Settings"
    }
    MessageBanner {
        Layout.preferredWidth: 420
        text: "Moved “the film of the holiday that nobody will ever watch again, in the version with all the scenes.mov” to the Trash. Empty it to free 2 GB."
    }
    MessageBanner {
        Layout.preferredWidth: 420
        text: "That didn't work: /home/someone/anameofafolderthathasnospaceatallandsocannotbewrappedanywhere/another: Permission denied"
    }
    MessageBanner {
        Layout.preferredWidth: 420
        text: "Moved “\u2068عطلة الصيف.mov\u2069” to the Trash. Empty it to free 2 GB."
    }
}
