#include "ZentoRender/PreviewRenderer.h"

#include <pthread.h>

#include <exception>
#include <utility>

namespace zento {
namespace {

PreviewFrame compose(PreviewFrames& frames, const PreviewRequest& request)
{
    PreviewFrame answer = {.number = request.number, .tOut = request.tOut};
    try {
        answer.picture = frames.frame(request.film, request.source, request.tOut, request.detail);
    } catch (const std::exception& error) {
        answer.failure = error.what();
    }
    return answer;
}

} // namespace

PreviewRenderer::PreviewRenderer(Deliver deliver)
    : m_deliver(std::move(deliver))
    , m_thread([this](const std::stop_token& stop) { run(stop); })
{
}

PreviewRenderer::~PreviewRenderer() = default;

void PreviewRenderer::request(PreviewRequest request)
{
    const std::lock_guard lock(m_mutex);
    m_waiting = std::move(request);
    m_changed.notify_one();
}

void PreviewRenderer::drop()
{
    const std::lock_guard lock(m_mutex);
    m_waiting.reset();
    m_isClosing = true;
    ++m_drops;
    m_changed.notify_one();
}

void PreviewRenderer::run(const std::stop_token& stop)
{
    pthread_setname_np(pthread_self(), "preview.compose");
    PreviewFrames frames;
    std::unique_lock lock(m_mutex);
    while (m_changed.wait(lock, stop, [this] { return m_waiting || m_isClosing; })) {
        const auto request = std::exchange(m_waiting, std::nullopt);
        const bool closes = std::exchange(m_isClosing, false);
        const std::uint64_t drops = m_drops;
        lock.unlock();
        if (closes)
            frames.close();
        std::optional<PreviewFrame> answer;
        if (request)
            answer = compose(frames, *request);
        lock.lock();
        const bool isWanted = answer && drops == m_drops && !stop.stop_requested();
        if (!isWanted)
            continue;
        lock.unlock();
        m_deliver(*std::move(answer));
        lock.lock();
    }
}

} // namespace zento
