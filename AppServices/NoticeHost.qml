import QtQuick

/// Shows the notice that there is, if any, at the bottom of what it lies over.
Item {
}
