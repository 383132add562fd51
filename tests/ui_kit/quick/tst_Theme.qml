import QtQuick
import QtTest
import Spacemint.UiKit

Item {
    id: scene

    readonly property color own: Theme.dynamic(0x112233, 0xFFEEDD)
    readonly property int transition: Theme.duration(150)
    readonly property font small: Theme.text(10)
    readonly property font figure: Theme.display(40)

    width: 400
    height: 300

    Symbol {
        id: symbol
    }

    TestCase {
        name: "Theme"
        when: windowShown

        function cleanup() {
            Theme.isDark = false;
            Theme.textScale = 1;
            Theme.reducedMotion = false;
        }

        function test_a_binding_follows_the_appearance() {
            compare(own, "#112233");
            Theme.isDark = true;
            compare(own, "#ffeedd");
            Theme.isDark = false;
            compare(own, "#112233");
        }

        function test_a_symbol_is_drawn_again_in_the_other_appearance() {
            symbol.symbol = "checkmark.circle.fill";
            waitForRendering(symbol);
            const light = grabImage(symbol).pixel(8, 2);
            Theme.isDark = true;
            compare(symbol.status, Image.Ready);
            waitForRendering(symbol);
            verify(!Qt.colorEqual(light, grabImage(symbol).pixel(8, 2)));
        }

        function test_a_binding_follows_the_text_scale() {
            compare(small.pixelSize, 10);
            Theme.textScale = 1.5;
            compare(small.pixelSize, 15);
            compare(figure.pixelSize, 60);
            compare(Theme.title.pixelSize, 42);
        }

        function test_a_binding_follows_reduced_motion() {
            compare(transition, 150);
            Theme.reducedMotion = true;
            compare(transition, 0);
        }
    }
}
