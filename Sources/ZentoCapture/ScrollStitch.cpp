#include "ZentoCapture/ScrollStitch.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace zento {

namespace {

/// How much farther than asked for content moves where wheels speed up.
constexpr double kSlack = 1.1;

/// Of the bottom rows that came into view the first `count`.
Canvas newRows(const Canvas& image, int shift, int count)
{
    Canvas strip(image.width(), count);
    const Plane<std::uint32_t> pixels = strip.pixels();
    for (int y = 0; y < count; ++y) {
        std::memcpy(
            pixels.row(y),
            image.pixels().row(image.height() - shift + y),
            static_cast<std::size_t>(image.width()) * sizeof(std::uint32_t));
    }
    return strip;
}

/// Whether the lower band of a frame went up with the content: what stayed is a bar.
bool lowerBandMoved(
    const std::vector<std::uint64_t>& previous,
    const std::vector<std::uint64_t>& current,
    int shift)
{
    const ScrollBand band(static_cast<int>(previous.size()));
    const auto from = previous.begin() + std::max(band.limit, shift);
    return std::equal(from, previous.end(), current.begin() + std::max(band.limit - shift, 0));
}

} // namespace

ScrollStitch::Frame::Frame(const Canvas& image)
    : signature(image)
    , rows(rowHashes(image, 0, image.width() - edgeWidth(image.width())))
    , edge(rowHashes(image, image.width() - edgeWidth(image.width()), image.width()))
{
}

ScrollStitch::ScrollStitch(std::shared_ptr<const Canvas> first)
    : m_frameHeight(first->height())
    , m_height(first->height())
    , m_previous(*first)
{
    m_strips.push_back(std::move(first));
}

void ScrollStitch::doubt(ScrollDoubt reason)
{
    m_seams.push_back({m_height, reason});
}

void ScrollStitch::cutShort()
{
    doubt(ScrollDoubt::CutShort);
}

bool ScrollStitch::hasScrollBar() const
{
    return std::ranges::count(m_seams, ScrollDoubt::ScrollBar, &ScrollSeam::doubt) > 0;
}

/// Of all columns, or of all but the edge's where those cannot be had.
std::vector<int> ScrollStitch::exactShiftsTo(const Frame& frame)
{
    std::vector<int> inside = exactShifts(m_previous.rows, frame.rows);
    std::vector<int> whole;
    std::ranges::set_intersection(
        inside, exactShifts(m_previous.edge, frame.edge), std::back_inserter(whole));
    if (!whole.empty()) {
        return whole;
    }
    if (inside.size() == 1 && inside.front() >= kSmallMove && !hasScrollBar()) {
        doubt(ScrollDoubt::ScrollBar);
    }
    return inside;
}

bool ScrollStitch::hasFooter(const Frame& frame, int shift) const
{
    return !lowerBandMoved(m_previous.rows, frame.rows, shift)
           || (!hasScrollBar() && !lowerBandMoved(m_previous.edge, frame.edge, shift));
}

/// The shift, or nothing at the end of what can be put together.
std::optional<int> ScrollStitch::measure(const Frame& frame, std::optional<int> expectedShift)
{
    const bool isStill =
        frame.rows == m_previous.rows && (hasScrollBar() || frame.edge == m_previous.edge);
    const std::vector<int> exact = exactShiftsTo(frame);
    if (exact.size() == 1) {
        const int shift = exact.front();
        // Farther than was asked for: the true shift is out of reach, and this is a likeness.
        if (expectedShift && shift > *expectedShift * kSlack + kSmallMove) {
            doubt(ScrollDoubt::Repeats);
        } else if (shift == 0 && !isStill) {
            doubt(ScrollDoubt::Changes);
        }
        return shift;
    }
    const std::optional<int> guessed = frame.signature.shift(m_previous.signature);
    if (!exact.empty()) {
        doubt(ScrollDoubt::Repeats);
    } else {
        doubt(guessed && *guessed > 0 ? ScrollDoubt::Changes : ScrollDoubt::LostTrack);
    }
    return guessed;
}

ScrollStitch::Verdict ScrollStitch::add(const Canvas& frame, std::optional<int> expectedShift)
{
    Frame current(frame);
    const ScrollBand band(m_frameHeight);
    if (band.maxShift < 1 || frame.width() != m_strips.front()->width()
        || frame.height() != m_frameHeight) {
        if (current.rows != m_previous.rows || current.edge != m_previous.edge) {
            doubt(ScrollDoubt::LostTrack);
        }
        return Verdict::Ended;
    }
    if (expectedShift && *expectedShift > band.maxShift) {
        doubt(ScrollDoubt::LostTrack); // what was asked for cannot be measured
    }
    const std::optional<int> shift = measure(current, expectedShift);
    if (!shift || *shift < kSmallMove) {
        if (shift && *shift > 0) {
            cutShort();
        }
        return Verdict::Ended;
    }
    if (hasFooter(current, *shift)) {
        doubt(ScrollDoubt::Footer);
    }
    m_lastShift = *shift;
    const int added = std::min({m_frameHeight, *shift, kMostHeight - m_height});
    if (added > 0) {
        m_strips.push_back(std::make_shared<const Canvas>(newRows(frame, *shift, added)));
        m_height += added;
    }
    const int isShort = m_frameHeight / 4;
    if (expectedShift && *shift < std::min(isShort, *expectedShift)) {
        return Verdict::Ended; // a short move: the last of the page has come
    }
    ++m_steps;
    m_previous = std::move(current);
    if (m_steps == kMostSteps || m_height == kMostHeight) {
        cutShort();
        return Verdict::Ended;
    }
    return Verdict::Continue;
}

Canvas ScrollStitch::compose() const
try {
    Canvas page(m_strips.front()->width(), m_height);
    const Plane<std::uint32_t> pixels = page.pixels();
    int y = 0;
    for (const auto& strip : m_strips) {
        for (int row = 0; row < strip->height(); ++row, ++y) {
            std::memcpy(
                pixels.row(y),
                strip->pixels().row(row),
                static_cast<std::size_t>(page.width()) * sizeof(std::uint32_t));
        }
    }
    return page;
} catch (const std::exception&) {
    throw Error(ErrorCode::kNoTallCanvas, "");
}

} // namespace zento
