#include "ZentoCapture/Backends/StreamFrames.h"

#include "ZentoCapture/CaptureSpace.h"
#include "ZentoCapture/FramePacing.h"

#include <algorithm>
#include <utility>

namespace zento {

namespace {

/// Frames keep their order where a stamp lies before that of the frame before.
constexpr double kSmallestStep = 0.001; // seconds

Vec2 sizeOf(const ForeignPicture& picture)
{
    return {static_cast<double>(picture.width), static_cast<double>(picture.height)};
}

std::size_t areaOf(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

} // namespace

void StreamFrames::take(const ScreenUpdate& update, double now)
{
    if (!update.picture) {
        return;
    }
    const ForeignPicture& picture = *update.picture;
    const bool hasNewSize = m_size != sizeOf(picture);
    m_size = sizeOf(picture);
    if (!m_onFrame || m_keeps == Keeps::Always) {
        keepWhole(picture);
    }
    if (!m_onFrame) {
        return;
    }
    if (!m_recorded) {
        m_recorded = m_size;
    }
    if (!hasNewSize && !concernsPart(update)) {
        return;
    }
    draw(picture);
    m_nextTime = update.time;
    m_isWaiting = true;
    tick(now);
}

void StreamFrames::begin(const PixelRect& part, FrameSource::FrameHandler onFrame, double now)
{
    m_part = part;
    m_recorded = m_size;
    m_next.resize(areaOf(part.width, part.height));
    m_last.clear();
    m_onFrame = std::move(onFrame);
    m_slot = now;
    if (m_size) {
        const int width = static_cast<int>(m_size->x);
        draw(
            {.data = reinterpret_cast<const std::uint8_t*>(m_whole.data()), // NOLINT: bytes
             .stride = std::ptrdiff_t{width} * 4,
             .width = width,
             .height = static_cast<int>(m_size->y)});
        m_nextTime = now; // it was there before, and is what there is to see
        m_isWaiting = true;
    }
}

std::optional<double> StreamFrames::due() const
{
    return m_isWaiting && m_onFrame ? std::optional(m_slot) : std::nullopt;
}

void StreamFrames::tick(double now)
{
    if (m_isWaiting && m_onFrame && now >= m_slot) {
        deliver(now);
    }
}

Vec2 StreamFrames::asRecorded(Vec2 pixel) const
{
    if (!m_recorded || !m_size || *m_recorded == *m_size) {
        return pixel;
    }
    const double scale = shownScale(*m_recorded, *m_size);
    return {pixel.x * scale, pixel.y * scale};
}

void StreamFrames::keepWhole(const ForeignPicture& picture)
{
    m_whole.resize(areaOf(picture.width, picture.height));
    copyAsBgrx(picture, {0, 0, picture.width, picture.height}, m_whole.data());
}

/// Makes the next picture.
void StreamFrames::draw(const ForeignPicture& picture)
{
    if (sizeOf(picture) == recorded()) {
        copyAsBgrx(picture, m_part, m_next.data());
        return;
    }
    keepWhole(picture);
    const int width = static_cast<int>(recorded().x);
    const int height = static_cast<int>(recorded().y);
    m_fittedWhole.resize(areaOf(width, height));
    m_fitted.draw(
        {.data = reinterpret_cast<const std::uint8_t*>(m_whole.data()), // NOLINT: bytes
         .width = picture.width,
         .height = picture.height,
         .stride = std::ptrdiff_t{picture.width} * 4},
        shownScale(recorded(), sizeOf(picture)),
        m_fittedWhole.data(),
        width,
        height);
    copyAsBgrx(
        {.data = reinterpret_cast<const std::uint8_t*>(m_fittedWhole.data()), // NOLINT: bytes
         .stride = std::ptrdiff_t{width} * 4,
         .width = width,
         .height = height},
        m_part,
        m_next.data());
}

/// False only where the desktop says that all that has changed lies elsewhere.
bool StreamFrames::concernsPart(const ScreenUpdate& update) const
{
    // A picture that waits is drawn over: what it owes would be lost.
    return update.damage.empty() || m_isWaiting
           || std::ranges::any_of(
               update.damage, [&](const PixelRect& rect) { return intersects(rect, m_part); });
}

void StreamFrames::deliver(double now)
{
    m_slot = nextSlot(m_slot, now);
    if (m_next == m_last) {
        m_isWaiting = false; // repainted with the same pixels
        return;
    }
    const double time =
        m_last.empty() ? m_nextTime : std::max(m_nextTime, m_lastTime + kSmallestStep);
    if (m_onFrame({.picture = view(), .time = time}) == FrameVerdict::Refused) {
        return; // it goes on waiting
    }
    m_isWaiting = false;
    m_lastTime = time;
    m_last.resize(m_next.size());
    std::swap(m_next, m_last);
}

BgraView StreamFrames::view() const
{
    return {
        .data = reinterpret_cast<const std::uint8_t*>(m_next.data()), // NOLINT: bytes
        .width = m_part.width,
        .height = m_part.height,
        .stride = std::ptrdiff_t{m_part.width} * 4};
}

} // namespace zento
