import QtQuick
import QtQuick.Layouts
import Spacemint.UiKit

ColumnLayout {
    property Item pointer: hovered
    property Item focused: focusedButton

    spacing: 16

    component Styles: RowLayout {
        id: styles

        property string symbol
        property bool usable: true
        property bool pressed: false

        spacing: 8

        PrimaryButtonStyle {
            text: "Clean up"
            symbol: styles.symbol
            enabled: styles.usable
            down: styles.pressed
        }
        SecondaryButtonStyle {
            text: "Show"
            symbol: styles.symbol
            enabled: styles.usable
            down: styles.pressed
        }
        QuietButtonStyle {
            text: "Ignore"
            symbol: styles.symbol
            enabled: styles.usable
            down: styles.pressed
        }
        IconButton {
            help: "Settings"
            symbol: styles.symbol || "gearshape"
            enabled: styles.usable
            down: styles.pressed
        }
        IconButton {
            help: "More"
            symbol: "chevron.down"
            flipped: true
            enabled: styles.usable
            down: styles.pressed
        }
    }

    SectionLabel {
        title: "At rest"
    }
    Styles {}
    Styles {
        symbol: "leaf"
    }
    SectionLabel {
        title: "Pressed"
    }
    Styles {
        pressed: true
    }
    SectionLabel {
        title: "Not usable"
    }
    Styles {
        usable: false
    }
    SectionLabel {
        title: "Under the pointer, and with the keyboard"
    }
    RowLayout {
        spacing: 16

        SecondaryButtonStyle {
            id: hovered

            text: "Pointer"
        }
        SecondaryButtonStyle {
            id: focusedButton

            text: "Keyboard"
        }
    }
    SectionLabel {
        title: "Full width, and too narrow"
    }
    PrimaryButtonStyle {
        text: "Clean up 12 GB"
        symbol: "trash"
        fullWidth: true
    }
    SecondaryButtonStyle {
        Layout.preferredWidth: 120
        text: "A text that does not fit"
        symbol: "folder"
    }
}
