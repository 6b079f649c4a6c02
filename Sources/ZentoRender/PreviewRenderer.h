#pragma once

#include "ZentoRender/PreviewFrames.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace zento {

/// A frame somebody wants to see.
struct PreviewRequest {
    std::uint64_t number = 0; // the caller's, to know the answer by
    std::shared_ptr<const PreviewFilm> film;
    PreviewSource source;
    double tOut = 0; // seconds within the main part
    PreviewDetail detail = PreviewDetail::Exact;
};

/// The answer to a request: a picture, or the sentence why there is none.
struct PreviewFrame {
    std::uint64_t number = 0;
    double tOut = 0;
    std::shared_ptr<const Picture> picture; // null for a failure
    std::string failure;
};

/// Composes the frames of a preview on one thread. At most one is under way and one waits: a new
/// request takes the place of the one that waits, which is never answered. So a hand that scrubs
/// faster than frames can be made always gets the newest.
///
/// Threading: `request` and `drop` from any thread.
class PreviewRenderer {
public:
    /// Called on the renderer's thread, once for every request that was begun and not dropped.
    using Deliver = std::function<void(PreviewFrame)>;

    explicit PreviewRenderer(Deliver deliver);
    ~PreviewRenderer(); // waits for the frame under way, which is not delivered

    void request(PreviewRequest request);

    /// Forgets the request that waits and closes the movies. A frame under way is not delivered
    /// unless its delivery has begun.
    void drop();

private:
    void run(const std::stop_token& stop);

    Deliver m_deliver;
    std::mutex m_mutex; // guards the three below
    std::condition_variable_any m_changed;
    std::optional<PreviewRequest> m_waiting;
    std::uint64_t m_drops = 0;
    bool m_isClosing = false; // the movies, soon
    std::jthread m_thread;    // ends before what it uses
};

} // namespace zento
