#pragma once

#include "ZentoCapture/Backends/PipeWireLoop.h"
#include "ZentoCapture/Backends/ScreenStreamBuffer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace zento {

/// What a desktop shows of itself as a stream: pictures while something changes, and where the
/// pointer is. It may change its size, and with it its form, whenever it likes.
///
/// Threading: the handlers run on the loop's thread, and no more once the destructor has returned.
class PipeWireScreenStream {
public:
    struct Handlers {
        std::function<void(const ScreenUpdate&)> update;     // valid during the call
        std::function<void(const std::string& reason)> gone; // nothing follows
    };

    /// `node`: the service's number of the stream. Throws `Error` of kPortalFailed when the service
    /// refuses.
    PipeWireScreenStream(PipeWireLoop& loop, std::uint32_t node, Handlers handlers);
    ~PipeWireScreenStream();
    PipeWireScreenStream(const PipeWireScreenStream&) = delete;
    PipeWireScreenStream& operator=(const PipeWireScreenStream&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
