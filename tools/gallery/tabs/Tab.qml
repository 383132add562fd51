import QtQuick
import Spacemint.Views

/// The tabs, after an action on the row with a title.
TabPages {
    id: root

    property string deed
    /// The title of the row, as it is and in the user's language.
    property list<string> titles
    property Item pointer: null
    property Item focused: null

    function find(item, test) {
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i];
            const found = test(child) ? child : find(child, test);
            if (found)
                return found;
        }
        return null;
    }

    function act() {
        const row = find(root, item => item.rowId !== undefined && root.titles.includes(item.title));
        if (deed === "unfold")
            row.expanded = true;
        else if (deed === "point")
            pointer = row;
        else if (deed === "focus")
            focused = row;
        else if (deed === "menu")
            row.menuWanted();
        else if (deed === "showAll")
            find(root, item => item.showAllGrowth !== undefined).showAllGrowth = true;
        else if (deed === "showActive")
            find(root, item => item.showAll !== undefined).showAll = true;
    }
}
