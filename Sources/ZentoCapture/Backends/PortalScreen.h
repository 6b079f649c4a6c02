#pragma once

#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/ScreenCastSession.h"
#include "ZentoCapture/FrameSource.h"
#include "ZentoCapture/PointerTrack.h"
#include "ZentoCore/Geometry.h"

#include <memory>
#include <stop_token>

namespace zento {

/// How points of a recording and of what it shows belong together:
/// recorded = origin + shown × factor.
struct ShownPlace {
    Vec2 origin;       // points, of the recording
    Vec2 size;         // points, of the monitor or the window as it is now
    double factor = 1; // below 1 for a window that has grown since the recording began
};

/// What the user has chosen to show, as it comes from the desktop: one session of its portal, one
/// stream of PipeWire, and where the pointer is.
///
/// Threading: `begin` and `end` by one thread at a time; the handlers run on "capture.video".
class PortalScreen {
public:
    /// Returns with the first picture. Throws `Error` as `ScreenCastSession`, and kPortalSilent
    /// when no picture comes.
    PortalScreen(
        const ScreenChoice& choice,
        const RestoreTokens& tokens,
        const PortalPatience& patience,
        std::shared_ptr<PointerTrack> pointer,
        const std::stop_token& stop);
    ~PortalScreen();
    PortalScreen(const PortalScreen&) = delete;
    PortalScreen& operator=(const PortalScreen&) = delete;

    // As it was with the first picture.
    Rect bounds() const;  // points of the desktop; from (0, 0) where it does not say
    double scale() const; // pixels of the stream per point

    bool tellsPointer() const;

    /// The session, for what a hand does.
    const ScreenCastSession& session() const;

    /// What is shown at this moment. Any thread.
    ShownPlace place() const;

    /// From here on frames are handed over; with a hand, time and again. `part`: pixels of the
    /// stream, within it.
    void
    begin(const PixelRect& part, FrameSource::FrameHandler onFrame, FrameSource::EndHandler onEnd);

    /// After it returns no handler runs.
    void end();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Pixels per point of a stream that is so many pixels and, rounded, so many points wide. Desktops
/// scale by multiples of 1/120, so the rounding can be told from the scale.
double streamScale(double pixels, double points);

} // namespace zento
