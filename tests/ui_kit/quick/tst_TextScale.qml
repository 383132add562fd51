import QtQuick
import QtQuick.Layouts
import QtTest
import Spacemint.UiKit

/// With large text, no text of a component is cut off or outside of the component.
Item {
    id: scene

    width: 600
    height: 400

    ColumnLayout {
        id: column

        PrimaryButtonStyle {
            text: "Ünmåkgy"
            symbol: "trash"
        }
        SecondaryButtonStyle {
            text: "Ünmåkgy"
        }
        QuietButtonStyle {
            text: "Ünmåkgy"
        }
        IconButton {
            symbol: "gearshape"
            help: "Settings"
        }
        SectionLabel {
            title: "Ünmåkgy"
        }
        Toggle {
            text: "Ünmåkgy"
        }
        Picker {
            model: ["Ünmåkgy", "y"]
        }
        SegmentedPicker {
            model: ["Ünmåkgy", "y"]
        }
        Wordmark {}
        Card {
            Label {
                text: "Ünmåkgy"
            }
        }
    }

    TestCase {
        name: "TextScale"
        when: windowShown

        function test_nothing_is_cut_data() {
            const rows = [];
            for (const scale of [1, 1.5, 2]) {
                for (let i = 0; i < column.children.length; ++i)
                    rows.push({
                        "tag": `${column.children[i]} at ${scale}`,
                        "item": column.children[i],
                        "scale": scale
                    });
            }
            return rows;
        }

        function test_nothing_is_cut(data) {
            Theme.textScale = data.scale;
            waitForItemPolished(column);
            verify(check(data.item, data.item) > 0);
        }

        /// Returns the number of texts and pictures that it checked.
        function check(item, component) {
            let seen = 0;
            if (item instanceof Text || item instanceof Image) {
                const width = item instanceof Text ? item.contentWidth : item.width;
                const height = item instanceof Text ? item.contentHeight : item.height;
                const place = item.mapToItem(component, 0, 0);
                verify(!item.truncated, `${item.text} is cut`);
                verify(width <= item.width + 1 && height <= item.height + 1, `${item.text} has too little room`);
                verify(place.x >= 0 && place.x + width <= component.width + 1, `${item.text} is too wide`);
                verify(place.y >= 0 && place.y + height <= component.height + 1, `${item.text} is too high`);
                seen = 1;
            }
            for (let i = 0; i < item.children.length; ++i) {
                if (item.children[i].visible)
                    seen += check(item.children[i], component);
            }
            return seen;
        }

        function cleanup() {
            Theme.textScale = 1;
        }
    }
}
