import QtQuick
import QtTest
import Spacemint.UiKit

Item {
    id: scene

    width: 400
    height: 300

    Component {
        id: toggles

        Toggle {
            width: 200
            text: "Open at login"
        }
    }
    Component {
        id: segments

        SegmentedPicker {
            model: ["Day", "Week", "Month"]
        }
    }
    Component {
        id: pickers

        Picker {
            model: ["Home folder", "Entire disk"]
        }
    }
    Component {
        id: columns

        ScrollColumn {
            width: 200
            height: 100

            Repeater {
                model: 20

                SecondaryButtonStyle {
                    required property int index

                    text: `Button ${index}`
                }
            }
        }
    }
    Component {
        id: spies

        SignalSpy {}
    }

    TestCase {
        name: "Controls"
        when: windowShown

        function make(component) {
            const item = createTemporaryObject(component, scene);
            waitForRendering(item);
            return item;
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
            Theme.reducedMotion = false;
        }

        function test_toggle() {
            const toggle = make(toggles);
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
            const picker = make(segments);
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
            const picker = make(pickers);
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
            const picker = make(pickers);
            const before = picker.implicitWidth;
            picker.currentIndex = 1;
            compare(picker.implicitWidth, before);
        }

        function test_scrolls_to_what_the_keyboard_is_at() {
            const column = make(columns);
            compare(column.contentY, 0);
            column.content[15].forceActiveFocus(Qt.TabFocusReason);
            const top = column.content[15].mapToItem(column, 0, 0).y;
            verify(top >= 0 && top + column.content[15].height <= column.height);
            keyClick(Qt.Key_Home);
            compare(column.contentY, 0);
            keyClick(Qt.Key_End);
            compare(column.contentY, column.contentHeight - column.height);
        }
    }
}
