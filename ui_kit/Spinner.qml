import QtQuick

/// Shows that something runs for an unknown time.
Symbol {
    id: root

    property bool running: true
    /// What runs, for screen readers.
    property string what

    symbol: "progress"
    color: Theme.secondary
    Accessible.ignored: false
    Accessible.role: Accessible.Animation
    Accessible.name: what

    RotationAnimation on rotation {
        running: root.running && Theme.isSeen(root) && !Theme.reducedMotion
        from: 0
        to: 360
        duration: 900
        loops: Animation.Infinite
    }
}
