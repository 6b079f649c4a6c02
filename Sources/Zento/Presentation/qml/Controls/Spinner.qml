import QtQuick
import Zento

// Something is under way, for how long nobody knows.
Ring {
    id: spinner

    fraction: 0.25
    Accessible.role: Accessible.Animation
    Accessible.name: qsTr("Working")
    RotationAnimator on rotation {
        from: 0
        to: 360
        duration: 900
        loops: Animation.Infinite
        running: spinner.visible && Window.visibility !== Window.Hidden && !Theme.reducedMotion
    }
}
