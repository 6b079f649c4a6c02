#pragma once

#include "ZentoCapture/CaptureSpace.h"
#include "ZentoCapture/ElementLookup.h"
#include "ZentoCapture/EventLog.h"
#include "ZentoCapture/InputSource.h"
#include "ZentoCore/InputEvent.h"

#include <memory>
#include <mutex>
#include <vector>

namespace zento {

/// Turns what the user does into records of the log, in capture space.
///
/// Input, the pointer's poll and element lookups write at once; a lookup that outlives the
/// recording finds nobody to tell.
///
/// Threading: safe. The two locks, of the space and of the log, are never held together.
class InputLog : public std::enable_shared_from_this<InputLog> {
public:
    /// Without a lookup the clicks stay without `ax`.
    static std::shared_ptr<InputLog> make(std::unique_ptr<ElementLookup> lookup);

    CaptureSpace space() const;
    void setSpace(const CaptureSpace& space);

    /// Logs one input; a click also asks for the element under it.
    void handle(const RawInput& input);

    /// Logs where the pointer is.
    void move(double time, Vec2 point);

    EventNews takeNews() { return m_log.takeNews(); }

    std::vector<InputEvent> finished(double epoch) const { return m_log.finished(epoch); }

private:
    explicit InputLog(std::unique_ptr<ElementLookup> lookup);

    void sampleAX(Vec2 point, std::size_t eventIndex);

    std::unique_ptr<ElementLookup> m_lookup; // may be null
    mutable std::mutex m_spaceMutex;
    CaptureSpace m_space;
    EventLog m_log;
};

} // namespace zento
