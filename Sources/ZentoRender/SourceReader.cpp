#include "ZentoRender/SourceReader.h"

#include "ZentoMedia/PictureTimes.h"

#include <utility>

namespace zento {
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
