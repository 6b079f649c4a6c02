#pragma once

#include "Zento/Demo/Random.h"
#include "ZentoCore/Geometry.h"

#include <memory>
#include <stop_token>
#include <string>

namespace zento {

class XConnection;

enum class PointerButton : unsigned char { Left = 1, Right = 3 }; // numbers of the protocol
enum class WheelDirection : unsigned char { Up = 4, Down = 5 };

/// A hand on the mouse of a display: real input through XTEST, at a person's pace.
///
/// Each call takes as long as a hand would and returns early, with the buttons released, on a stop
/// request. Threading: one thread at a time.
class Pointer {
public:
    /// Throws `Error` kDesktopFailed if the display is out of reach or lacks XTEST.
    Pointer(const std::string& display, std::uint64_t seed);
    ~Pointer();

    /// Where the pointer is, in pixels of the display.
    Vec2 position() const;

    /// Along a `pointerPath`. `targetSize`: the target's shorter side in pixels.
    void moveTo(Vec2 target, double targetSize, const std::stop_token& stop);

    void click(PointerButton button, const std::stop_token& stop);

    /// Twice at one place, as fast as a hand does.
    void doubleClick(const std::stop_token& stop);

    /// Presses the left button where the pointer is, moves there, and lets go.
    void dragTo(Vec2 target, const std::stop_token& stop);

    /// Notches of the wheel in flicks of a finger: quick ones, then a pause to reach back.
    void scroll(WheelDirection direction, int notches, const std::stop_token& stop);

private:
    void press(unsigned char button, double heldSeconds, const std::stop_token& stop);

    std::unique_ptr<XConnection> m_connection;
    Random m_random;
};

} // namespace zento
