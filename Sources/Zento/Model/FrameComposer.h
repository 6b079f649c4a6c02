#pragma once

#include "ZentoRender/PreviewRenderer.h"

#include <QImage>
#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

namespace zento {

/// A frame of the film, ready to be shown, or the sentence why there is none.
struct LiveFrame {
    std::uint64_t number = 0; // of the request
    double tOut = 0;
    QImage image; // null for a failure
    QString failure;
};

/// Composes frames beside the main thread: the newest request that is not begun takes the place of
/// the one before.
///
/// Threading: the main thread, on which answers come too.
class FrameComposer {
public:
    virtual ~FrameComposer() = default;

    virtual void request(PreviewRequest request) = 0;

    /// Forgets what waits and closes the movies; an answer under way may still come.
    virtual void drop() = 0;
};

using FrameComposerFactory =
    std::function<std::unique_ptr<FrameComposer>(std::function<void(LiveFrame)> deliver)>;

/// The real one: a `PreviewRenderer`, which also makes the image.
std::unique_ptr<FrameComposer> threadedComposer(std::function<void(LiveFrame)> deliver);

} // namespace zento
