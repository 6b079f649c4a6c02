#include "ZentoRender/SourceReader.h"

#include <utility>

namespace zento {
namespace {

/// A time that was computed falls short of a frame's own by a rounding error or not, as it happens:
/// without this, a recording at the film's own rate stutters. A recording's clock ticks in 17 µs.
constexpr double kRoundingAllowance = 1e-6; // seconds

} // namespace

SourceReader::SourceReader(const std::filesystem::path& movie)
    : m_decoder(movie)
{
}

std::optional<VideoFrame> SourceReader::frame(double t)
{
    while (true) {
        if (!m_next)
            m_next = m_decoder.next();
        if (!m_next || (m_next->time() > t + kRoundingAllowance && m_current))
            return m_current;
        m_current = std::exchange(m_next, std::nullopt);
    }
}

} // namespace zento
