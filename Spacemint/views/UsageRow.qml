import QtQuick
import Spacemint.UiKit

/// What one kind of Docker's data takes.
ItemRow {}
