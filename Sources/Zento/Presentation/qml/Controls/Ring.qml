import QtQuick
import QtQuick.Shapes
import Zento

// A circle of which a part is drawn strongly, from the top, clockwise.
Item {
    id: ring

    property real fraction: 1
    property real thickness: 2
    property color color: Theme.accent
    property color groove: Theme.controlPressed

    implicitWidth: 16
    implicitHeight: 16
    Shape {
        anchors.fill: parent
        ShapePath {
            strokeColor: ring.groove
            strokeWidth: ring.thickness
            fillColor: "transparent"
            PathAngleArc {
                centerX: ring.width / 2
                centerY: ring.height / 2
                radiusX: (ring.width - ring.thickness) / 2
                radiusY: radiusX
                sweepAngle: 360
            }
        }
        ShapePath {
            strokeColor: ring.fraction > 0 ? ring.color : "transparent"
            strokeWidth: ring.thickness
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: ring.width / 2
                centerY: ring.height / 2
                radiusX: (ring.width - ring.thickness) / 2
                radiusY: radiusX
                startAngle: -90
                sweepAngle: 360 * ring.fraction
            }
        }
    }
}
