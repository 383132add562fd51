import QtQuick
import QtTest
import Spacemint.UiKit

Item {
    id: scene

    readonly property color own: Theme.dynamic(0x112233, 0xFFEEDD)
    readonly property int transition: Theme.duration(150)
    readonly property font small: Theme.text(10)
    readonly property font figure: Theme.display(40, "57.1 GB")

    width: 400
    height: 300

    Component {
        id: spies

        SignalSpy {}
    }

    TestCase {
        name: "Components"
        when: windowShown

        property Item made: null

        // Makes the one component of a test from QML text.
        function make(text) {
            made = Qt.createQmlObject(`import QtQuick; import Spacemint.UiKit; ${text}`, scene);
            waitForRendering(made);
            return made;
        }

        function spyOn(target, signalName) {
            return createTemporaryObject(spies, scene, {
                "target": target,
                "signalName": signalName
            });
        }

        function init() {
            Theme.reducedMotion = true;
        }

        function cleanup() {
            made?.destroy();
            made = null;
            Theme.isDark = false;
            Theme.textScale = 1;
            Theme.reducedMotion = false;
        }

        function test_toggle() {
            const toggle = make('Toggle { width: 200; text: "Open at login" }');
            const spy = spyOn(toggle, "toggled");
            mouseClick(toggle, 5, toggle.height / 2);
            verify(toggle.checked);
            toggle.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Space);
            verify(!toggle.checked);
            keyClick(Qt.Key_Return);
            verify(toggle.checked);
            compare(spy.count, 3);
            compare(toggle.Accessible.name, "Open at login");
        }

        function test_segments() {
            const picker = make('SegmentedPicker { model: ["Day", "Week", "Month"] }');
            const spy = spyOn(picker, "activated");
            mouseClick(picker, picker.width - 10, picker.height / 2);
            compare(picker.currentIndex, 2);
            picker.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Right);
            compare(picker.currentIndex, 2);
            keyClick(Qt.Key_Left);
            compare(picker.currentIndex, 1);
            mouseClick(picker);
            compare(spy.signalArguments.map(each => each[0]), [2, 1]);
        }

        function test_picker_by_keyboard() {
            const picker = make('Picker { model: ["Home folder", "Entire disk"] }');
            const spy = spyOn(picker, "activated");
            picker.forceActiveFocus(Qt.TabFocusReason);
            keyClick(Qt.Key_Return);
            tryVerify(() => picker.popup.opened);
            keyClick(Qt.Key_Down);
            keyClick(Qt.Key_Return);
            tryVerify(() => !picker.popup.visible);
            compare(picker.currentIndex, 1);
            compare(spy.count, 1);
            compare(spy.signalArguments[0][0], 1);
        }

        function test_a_picker_is_as_wide_as_its_widest_choice() {
            const picker = make('Picker { model: ["Home folder", "Entire disk"] }');
            const before = picker.implicitWidth;
            picker.currentIndex = 1;
            compare(picker.implicitWidth, before);
        }

        function test_scrolls_to_what_the_keyboard_is_at() {
            const column = make(`ScrollColumn {
                width: 200; height: 100
                Repeater { model: 20; SecondaryButtonStyle { required property int index; text: index } }
            }`);
            compare(column.contentY, 0);
            column.content[15].forceActiveFocus(Qt.TabFocusReason);
            const top = column.content[15].mapToItem(column, 0, 0).y;
            verify(top >= 0 && top + column.content[15].height <= column.height);
            keyClick(Qt.Key_Home);
            compare(column.contentY, 0);
            keyClick(Qt.Key_End);
            compare(column.contentY, column.contentHeight - column.height);
        }

        function buttons() {
            return ['PrimaryButtonStyle { text: "Do it" }', 'SecondaryButtonStyle { text: "Do it" }',
                    'QuietButtonStyle { text: "Do it" }', 'IconButton { symbol: "trash"; help: "Do it" }']
                .map(text => ({ "tag": text, "text": text }));
        }

        function test_clicks_data() {
            return buttons();
        }

        function test_clicks(data) {
            const button = make(data.text);
            const spy = spyOn(button, "clicked");
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
            const button = make(buttons()[0].text);
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
            const button = make(data.text);
            mouseMove(scene, 399, 299);
            const before = grabImage(scene);
            mouseMove(button, button.width / 2, 3);
            tryVerify(() => !grabImage(scene).equals(before));
        }

        function test_a_click_beside_it_counts_within_its_reach() {
            const button = make('QuietButtonStyle { x: 100; y: 100; text: "Do it"; reach: 10 }');
            const spy = spyOn(button, "clicked");
            mouseClick(scene, 92, 92);
            compare(spy.count, 1);
            mouseClick(scene, 88, 92);
            compare(spy.count, 1);
        }

        function test_a_binding_follows_the_appearance() {
            compare(own, "#112233");
            Theme.isDark = true;
            compare(own, "#ffeedd");
            Theme.isDark = false;
            compare(own, "#112233");
        }

        function test_a_symbol_is_drawn_again_in_the_other_appearance() {
            const symbol = make('Symbol { symbol: "checkmark.circle.fill" }');
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
            compare(figure.pixelSize, 50);
            compare(Theme.title.pixelSize, 42);
        }

        function test_a_binding_follows_reduced_motion() {
            compare(transition, 0);
            Theme.reducedMotion = false;
            compare(transition, 150);
        }
    }
}
