pragma Singleton
import QtQuick
import Spacemint.UiKit

/// The fonts, colours and lengths of the interface. The functions are in QML and not in C++, because a binding
/// follows only what a QML function reads.
ThemeBase {
    readonly property color shadow: dynamic(0, 0)
    readonly property font title: text(28, Font.DemiBold)
    /// The colour over a page while a question covers it.
    readonly property color backdrop: Qt.rgba(0, 0, 0, 0.18)

    /// Whether the person used the keyboard last, and not the pointer. Read here, so that it is known from the start.
    readonly property bool isKeyboardInUse: LastInput.isKeyboard

    /// The font of figures and headlines, for one such text. They are large, and grow half as much as the other texts.
    function display(size: real, shown: string) : font {
        return scaledFont(displayFamily(shown), size * (1 + textScale) / 2 / textScale, Font.Normal);
    }

    /// The font of all other texts. `weight` is a value of Font and may be left out.
    function text(size, weight) : font {
        return scaledFont(sansFamily, size, weight ?? Font.Normal);
    }

    /// Mirrors the item and all in it, if the application is laid out from right to left.
    function followDirection(item: Item) {
        item.LayoutMirroring.enabled = Application.layoutDirection === Qt.RightToLeft;
        item.LayoutMirroring.childrenInherit = true;
    }

    /// A length that grows with the text.
    function scaled(length: real) : real {
        return Math.round(length * textScale);
    }

    /// A colour of two 0xRRGGBB.
    function dynamic(light: int, dark: int) : color {
        const rgb = isDark ? dark : light;
        return Qt.rgba((rgb >> 16 & 255) / 255, (rgb >> 8 & 255) / 255, (rgb & 255) / 255, 1);
    }

    /// The opacity of a control: faded if it is disabled itself, but not if it is on a page that is disabled as a
    /// whole, such as the page behind a question.
    function strength(control: Item) : real {
        return control.enabled || control.parent?.enabled === false ? 1 : 0.4;
    }

    /// Why the focus goes to a control that another one led to. With the keyboard, it shows its ring.
    function focusReason() : int {
        return isKeyboardInUse ? Qt.TabFocusReason : Qt.OtherFocusReason;
    }

    /// The duration of a transition, in milliseconds.
    function duration(ms: int) : int {
        return reducedMotion ? 0 : ms;
    }

    /// Whether the item is visible in a window that is shown. Timers and endless animations run only then, so that
    /// a hidden window does not wake the processor.
    function isSeen(item: Item) : bool {
        const window = item.Window.visibility;
        return item.visible && window !== Window.Hidden && window !== Window.Minimized;
    }

    function scaledFont(family: string, size: real, weight: int) : font {
        return Qt.font({
            "family": family,
            "pixelSize": scaled(size),
            "weight": weight
        });
    }
}
