import QtQuick

/// The frame of a tile of a picture.
Rectangle {
    property rect frame

    x: frame.x
    y: frame.y
    width: frame.width
    height: frame.height
    visible: width > 0
    radius: width >= 16 && height >= 16 ? 4 : 0
    color: "transparent"
}
