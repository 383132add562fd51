pragma Singleton
import QtQuick
import Spacemint.UiKit

/// How everything looks. What depends on the desktop is a function here and not in C++, for a binding follows
/// what a function in QML reads.
ThemeBase {
    readonly property color shadow: dynamic(0, 0)
    readonly property font title: text(28, Font.DemiBold)
    /// Over a page that has to wait.
    readonly property color backdrop: Qt.rgba(0, 0, 0, 0.18)

    /// The font of figures and headlines.
    function display(size: real) : font {
        return scaledFont(serifFamily, size, Font.Normal);
    }

    /// The font of all else; `weight` is one of Font's and may be left out.
    function text(size, weight) : font {
        return scaledFont(sansFamily, size, weight ?? Font.Normal);
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

    /// How long a transition takes, in milliseconds.
    function duration(ms: int) : int {
        return reducedMotion ? 0 : ms;
    }

    /// Whether anybody can see the item. What runs by itself, a timer or a movement, runs only then, for what is
    /// hidden must not wake the processor.
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
