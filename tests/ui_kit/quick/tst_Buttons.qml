import QtQuick
import QtTest
import Spacemint.UiKit

Item {
    id: scene

    width: 400
    height: 300

    Component {
        id: primary

        PrimaryButtonStyle {
            text: "Do it"
        }
    }
    Component {
        id: secondary

        SecondaryButtonStyle {
            text: "Do it"
        }
    }
    Component {
        id: quiet

        QuietButtonStyle {
            text: "Do it"
        }
    }
    Component {
        id: icon

        IconButton {
            symbol: "trash"
            help: "Do it"
        }
    }
    Component {
        id: farReaching

        QuietButtonStyle {
            x: 100
            y: 100
            text: "Do it"
            reach: 10
        }
    }
    Component {
        id: spies

        SignalSpy {
            signalName: "clicked"
        }
    }

    TestCase {
        name: "Buttons"
        when: windowShown

        function buttons() {
            return [primary, secondary, quiet, icon].map((component, index) => ({
                        "tag": ["primary", "secondary", "quiet", "icon"][index],
                        "component": component
                    }));
        }

        function make(component) {
            const button = createTemporaryObject(component, scene);
            waitForRendering(button);
            return button;
        }

        function spyOn(button) {
            return createTemporaryObject(spies, scene, {
                "target": button
            });
        }

        function test_clicks_data() {
            return buttons();
        }

        function test_clicks(data) {
            const button = make(data.component);
            const spy = spyOn(button);
            button.forceActiveFocus(Qt.TabFocusReason);
            verify(button.visualFocus);
            keyClick(Qt.Key_Space);
            compare(spy.count, 1);
            keyClick(Qt.Key_Return);
            compare(spy.count, 2);
            keyClick(Qt.Key_Enter);
            compare(spy.count, 3);
            mouseClick(button);
            compare(spy.count, 4);
            button.enabled = false;
            mouseClick(button);
            keyClick(Qt.Key_Return);
            compare(spy.count, 4);
        }

        function test_shows_that_it_is_pressed() {
            const button = make(primary);
            Theme.reducedMotion = true;
            mousePress(button);
            fuzzyCompare(button.opacity, 0.8, 0.01);
            mouseRelease(button);
            fuzzyCompare(button.opacity, 1, 0.01);
        }

        function test_shows_the_pointer_data() {
            return buttons();
        }

        // Compares pictures of the whole scene, so that a transparent background counts too.
        function test_shows_the_pointer(data) {
            Theme.reducedMotion = true;
            const button = make(data.component);
            mouseMove(scene, 399, 299);
            const before = grabImage(scene);
            mouseMove(button, button.width / 2, 3);
            tryVerify(() => !grabImage(scene).equals(before));
        }

        function test_a_click_beside_it_counts_within_its_reach() {
            const button = make(farReaching);
            const spy = spyOn(button);
            mouseClick(scene, 92, 92);
            compare(spy.count, 1);
            mouseClick(scene, 88, 92);
            compare(spy.count, 1);
        }

        function cleanup() {
            Theme.reducedMotion = false;
        }
    }
}
