#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoCore/InputEvent.h"
#include "ZentoCore/RemapCurve.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zento {

// What a plan says about one frame, apart from its picture. Pure functions: the export and the
// preview take the same values from them. `tOut` is seconds of output time within the main part of
// the film, 0 at its first frame.

/// A click that is in the film.
struct FilmClick {
    double tOut = 0;
    Vec2 pos; // source pixels
    bool operator==(const FilmClick&) const = default;
};

/// A circle that spreads from a click.
struct Ripple {
    Vec2 pos;            // source pixels
    double progress = 0; // [0, 1): 0 at the click
    bool operator==(const Ripple&) const = default;
};

/// The pointer in one frame.
struct CursorState {
    Vec2 pos;              // its tip, source pixels
    std::string style;     // "arrow", "iBeam", "pointingHand"
    double clickPulse = 0; // [0, 1], strength of the click animation
    double alpha = 1;      // [0, 1], opacity from hiding an idle pointer
    bool operator==(const CursorState&) const = default;
};

/// A text over one frame.
struct FrameText {
    std::string text;
    double alpha = 1; // [0, 1]
    bool operator==(const FrameText&) const = default;
};

/// The plan's clicks, or the recording's if the plan has none, without those that were cut.
std::vector<FilmClick>
filmClicks(const EditPlan& plan, const std::vector<InputEvent>& events, const RemapCurve& curve);

/// The plan's pointer path ascending by `t`, or the recording's moves as an arrow if it has none.
std::vector<CursorSample> cursorTrack(const EditPlan& plan, const std::vector<InputEvent>& events);

struct CursorPlace {
    Vec2 pos;
    std::string style;
    bool operator==(const CursorPlace&) const = default;
};

/// The pointer at source time `t`, on the straight line between two samples; styles do not blend.
/// Samples are ascending by `t`; nothing without samples.
std::optional<CursorPlace> interpolate(std::span<const CursorSample> samples, double t);

/// [0, 1]: 1 at a click, 0 from 0.15 s on either side of it.
double clickPulse(std::span<const FilmClick> clicks, double tOut);

/// The ripples alive at `tOut`, in the order of the clicks. One lives for 0.45 s.
std::vector<Ripple> ripples(std::span<const FilmClick> clicks, double tOut);

// The texts of a frame, nothing where none shows. They fade in before their time and out after it,
// but for chapter titles, which have no end: they take both out of their 2.8 s. Where two overlap,
// the later one in the plan shows.

std::optional<FrameText> keystrokeAt(std::span<const KeystrokeChip> chips, double tOut);
std::optional<FrameText> captionAt(std::span<const CaptionChip> captions, double tOut);
std::optional<FrameText> chapterAt(std::span<const ChapterMarker> chapters, double tOut);

/// Fades a pointer out that has been idle for 1.5 s. It comes back at once.
///
/// Threading: a value. Step it once per frame that has a pointer, in film order.
class PointerIdleness {
public:
    /// Activity longer ago than this, in seconds, has no influence any more.
    static constexpr double kMemory = 1.95;

    /// The opacity at `tOut`. `pos` is in source pixels; a move of more than 3 of them since the
    /// step before, or a click pulse, is activity.
    double step(double tOut, Vec2 pos, double pulse);

private:
    double m_lastActive = 0;
    Vec2 m_previous = {-1, -1};
};

} // namespace zento
