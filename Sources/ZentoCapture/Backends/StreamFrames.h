#pragma once

#include "ZentoCapture/Backends/FittedPicture.h"
#include "ZentoCapture/Backends/PixelRect.h"
#include "ZentoCapture/Backends/ScreenStreamBuffer.h"
#include "ZentoCapture/FrameSource.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zento {

/// Turns the pictures a desktop sends into the frames of a recording: cut to its part, scaled when
/// the desktop has changed the size, not more often than 60 times a second, none like the one
/// before, and the refused one again.
///
/// Until `begin` the newest picture is kept: a still screen sends no second one. Who begins again
/// and again has every picture kept, which costs a copy of it.
///
/// Threading: one thread at a time.
class StreamFrames {
public:
    enum class Keeps : unsigned char { UntilBegin, Always };
    explicit StreamFrames(Keeps keeps = Keeps::UntilBegin)
        : m_keeps(keeps)
    {
    }

    /// `now`: seconds of CLOCK_MONOTONIC here and below.
    void take(const ScreenUpdate& update, double now);

    bool hasPicture() const { return m_size.has_value(); }

    /// Of the newest picture, in pixels; nothing without one.
    Vec2 size() const { return m_size.value_or(Vec2{}); }

    /// From here on frames are handed over; the picture there is already waits for the next `tick`.
    /// `part`: what they show, in pixels of the stream as it is now; it lies within that.
    void begin(const PixelRect& part, FrameSource::FrameHandler onFrame, double now);
    void end() { m_onFrame = nullptr; }

    /// When `tick` wants to be called; nothing while nothing waits.
    std::optional<double> due() const;
    void tick(double now);

    /// A place of the newest picture as one of the stream as it was at `begin`, in pixels.
    Vec2 asRecorded(Vec2 pixel) const;

private:
    Vec2 recorded() const { return m_recorded.value_or(Vec2{}); }
    void keepWhole(const ForeignPicture& picture);
    void draw(const ForeignPicture& picture);
    bool concernsPart(const ScreenUpdate& update) const;
    void deliver(double now);
    BgraView view() const;

    Keeps m_keeps;
    std::optional<Vec2> m_size;
    std::optional<Vec2> m_recorded; // the stream's size at `begin`
    PixelRect m_part;
    FrameSource::FrameHandler m_onFrame;
    std::vector<std::uint32_t> m_whole; // before `begin`, and whenever the size is another
    std::vector<std::uint32_t> m_fittedWhole;
    std::vector<std::uint32_t> m_next; // of the part
    std::vector<std::uint32_t> m_last; // the same; empty: none was taken
    FittedPicture m_fitted;
    bool m_isWaiting = false; // the next picture, for its slot
    double m_nextTime = 0;
    double m_lastTime = 0;
    double m_slot = 0;
};

} // namespace zento
