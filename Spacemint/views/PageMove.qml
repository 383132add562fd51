import QtQuick
import Spacemint.UiKit

/// The animation of a page that slides in or out.
NumberAnimation {
    duration: Theme.duration(260)
    easing.type: Easing.OutCubic
}
