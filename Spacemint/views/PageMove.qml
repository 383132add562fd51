import QtQuick
import Spacemint.UiKit

/// How a page comes and goes.
NumberAnimation {
    duration: Theme.duration(260)
    easing.type: Easing.OutCubic
}
