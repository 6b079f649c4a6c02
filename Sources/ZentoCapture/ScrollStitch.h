#pragma once

#include "ZentoCapture/ScrollSignature.h"
#include "ZentoImaging/Canvas.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zento {

namespace ErrorCode {
inline constexpr int kNoTallCanvas = 45;
inline constexpr int kNoTallImage = 46;
} // namespace ErrorCode

/// Why a stitched page may not be what the page is.
enum class ScrollDoubt : std::uint8_t {
    Repeats,   // the content repeats itself, so that several shifts look the same
    Changes,   // it changed between two shots: a film, an animation, a bar that sticks to it
    LostTrack, // two shots share too little to be put together; the page may go on
    Footer,    // a bar at the lower edge lies in the strip
    ScrollBar, // the right edge alone does not go with the content; told once
    CutShort,  // the limits were reached, or a rest too small to be measured was left out
};

struct ScrollSeam {
    int y = 0; // pixels from the top of the stitched image
    ScrollDoubt doubt = ScrollDoubt::Repeats;

    bool operator==(const ScrollSeam&) const = default;
};

/// Puts shots of a page that is being scrolled under each other.
///
/// A shift counts as certain when the rows of both shots are the same to the bit at it and at no
/// other, the right edge apart, where a scroll bar may lie. The grey values decide where no shift
/// is exact. Either is told.
///
/// Threading: one thread at a time.
class ScrollStitch {
public:
    static constexpr int kMostSteps = 60;
    static constexpr int kMostHeight = Canvas::kMostSide; // a page ends there
    static constexpr int kSmallMove = 4;                  // pixels

    enum class Verdict : std::uint8_t { Continue, Ended };

    explicit ScrollStitch(std::shared_ptr<const Canvas> first);

    /// The shot after the next step, of the first one's size. `expectedShift`: how many pixels the
    /// content was asked to move; nothing where that is not known.
    Verdict add(const Canvas& frame, std::optional<int> expectedShift);

    /// How far the last step moved; 0 before the first.
    int lastShift() const { return m_lastShift; }

    /// When nothing more comes for another reason than the page's end.
    void cutShort();

    /// Of the right edge where a scroll bar is looked for, in pixels.
    static int edgeWidth(int width) { return std::min(std::max(24, width / 40), width / 4); }

    int height() const { return m_height; } // of what is stitched
    int steps() const { return m_steps; }
    const std::vector<ScrollSeam>& seams() const { return m_seams; } // those in doubt

    /// The page. Throws `Error` 45 when there is no memory for it.
    Canvas compose() const;

private:
    struct Frame {
        ScrollSignature signature;
        std::vector<std::uint64_t> rows; // but for the edge
        std::vector<std::uint64_t> edge;

        explicit Frame(const Canvas& image);
    };

    std::optional<int> measure(const Frame& frame, std::optional<int> expectedShift);
    std::vector<int> exactShiftsTo(const Frame& frame);
    bool hasFooter(const Frame& frame, int shift) const;
    bool hasScrollBar() const;
    void doubt(ScrollDoubt reason);

    int m_lastShift = 0;
    int m_frameHeight;
    int m_height = 0;
    int m_steps = 0;
    std::vector<std::shared_ptr<const Canvas>> m_strips;
    std::vector<ScrollSeam> m_seams;
    Frame m_previous;
};

} // namespace zento
