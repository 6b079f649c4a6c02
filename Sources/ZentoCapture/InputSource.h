#pragma once

#include "ZentoCapture/PointerTrack.h"
#include "ZentoCore/Geometry.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace zento {

enum class RawInputType : unsigned char { LeftDown, LeftUp, RightDown, KeyDown, Scroll };

/// One act of the user, whichever application it goes to.
struct RawInput {
    RawInputType type = RawInputType::LeftDown;
    double time = 0;          // seconds of CLOCK_MONOTONIC
    Vec2 point;               // global points: where the pointer was
    std::int64_t keyCode = 0; // virtual key code of the physical key, `kUnknownKey` if it has none
    std::uint64_t flags = 0;  // `KeyFlag`s held, before the key itself
    Vec2 scroll;              // points: `kPointsPerNotch` a notch; wheel up and left are positive
};

/// A notch of the wheel in the unit of `RawInput::scroll`.
inline constexpr double kPointsPerNotch = 10;

/// The user's input, in the order it happened as far as one device is concerned.
///
/// Presses and releases of modifiers, other buttons and drags are not reported. A held key is
/// reported for every repeat the desktop makes.
///
/// Threading: `start` and `stop` from one thread; the handler runs on the source's own thread
/// "capture.input". `pointerPosition` may be called from one further thread.
class InputSource {
public:
    using Handler = std::function<void(const RawInput&)>;

    virtual ~InputSource() = default;

    /// Throws `Error` with the code 25 when this desktop lets nobody listen.
    virtual void start(Handler handler) = 0;

    /// Hands over what has already happened; after it returns the handler does not run. Safe when
    /// nothing runs.
    virtual void stop() = 0;

    /// Whether clicks, keys and turns of the wheel are told, or the pointer's place alone.
    enum class Reach : unsigned char { Everything, PointerOnly };
    virtual Reach reach() const { return Reach::Everything; }

    /// In global points; nothing when the desktop does not answer.
    virtual std::optional<Vec2> pointerPosition() = 0;

    /// What a log of the pointer's way gets at the moment `now`. By default a pointer that cannot
    /// be read is logged at the global origin, not left out.
    virtual std::optional<PointerSample> pointerSample(double now)
    {
        return PointerSample{now, pointerPosition().value_or(Vec2{})};
    }
};

} // namespace zento
