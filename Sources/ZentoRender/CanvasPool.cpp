#include "ZentoRender/CanvasPool.h"

#include <mutex>
#include <utility>
#include <vector>

namespace zento {

struct CanvasPool::Idle {
    std::mutex mutex;
    std::vector<std::unique_ptr<Picture>> pictures;
};

CanvasPool::CanvasPool(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_idle(std::make_shared<Idle>())
{
}

std::shared_ptr<Picture> CanvasPool::acquire()
{
    std::unique_ptr<Picture> picture;
    {
        const std::lock_guard lock(m_idle->mutex);
        if (!m_idle->pictures.empty()) {
            picture = std::move(m_idle->pictures.back());
            m_idle->pictures.pop_back();
        }
    }
    if (!picture)
        picture = std::make_unique<Picture>(m_width, m_height, Layout::Yuv420);
    return {picture.release(), [idle = m_idle](Picture* returned) {
                std::unique_ptr<Picture> owned(returned);
                const std::lock_guard lock(idle->mutex);
                idle->pictures.push_back(std::move(owned));
            }};
}

} // namespace zento
