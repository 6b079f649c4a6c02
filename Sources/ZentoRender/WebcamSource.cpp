#include "ZentoRender/WebcamSource.h"

#include <algorithm>
#include <exception>

namespace zento {

WebcamSource::WebcamSource(
    const std::optional<WebcamPlan>& plan, const std::filesystem::path& bundle)
{
    if (!plan)
        return;
    m_offset = plan->offset;
    try {
        const std::filesystem::path path = plan->file;
        m_reader.emplace(std::filesystem::exists(path) ? path : bundle / path);
    } catch (const std::exception&) {
        m_reader.reset();
    }
}

std::optional<VideoFrame> WebcamSource::frame(double sourceTime)
{
    if (!m_reader)
        return std::nullopt;
    try {
        return m_reader->frame(std::max(sourceTime - m_offset, 0.0));
    } catch (const std::exception&) {
        m_reader.reset();
        return std::nullopt;
    }
}

} // namespace zento
