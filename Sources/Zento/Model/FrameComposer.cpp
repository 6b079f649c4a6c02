#include "Zento/Model/FrameComposer.h"

#include "Zento/Model/PictureImage.h"

#include <utility>

namespace zento {

namespace {

class ThreadedComposer final : public FrameComposer {
public:
    explicit ThreadedComposer(std::function<void(LiveFrame)> deliver)
        : m_deliver(std::move(deliver))
        , m_renderer([this](const PreviewFrame& frame) { post(frame); })
    {
    }

    void request(PreviewRequest request) override { m_renderer.request(std::move(request)); }
    void drop() override { m_renderer.drop(); }

private:
    /// On the renderer's thread. What is posted to `m_main` goes when it does.
    void post(const PreviewFrame& frame)
    {
        LiveFrame live = {
            .number = frame.number,
            .tOut = frame.tOut,
            .failure = QString::fromStdString(frame.failure)};
        if (frame.picture) {
            live.image = toImage(frame.picture->view());
        }
        QMetaObject::invokeMethod(
            &m_main,
            [this, live = std::move(live)]() mutable { m_deliver(std::move(live)); },
            Qt::QueuedConnection);
    }

    std::function<void(LiveFrame)> m_deliver;
    QObject m_main;
    PreviewRenderer m_renderer; // ends before what its thread uses
};

} // namespace

std::unique_ptr<FrameComposer> threadedComposer(std::function<void(LiveFrame)> deliver)
{
    return std::make_unique<ThreadedComposer>(std::move(deliver));
}

} // namespace zento
