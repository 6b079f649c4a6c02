#pragma once

#include "ZentoCore/InputEvent.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace zento {

/// The input of one recording, in memory, in the order it arrived.
///
/// Ten minutes of the pointer's 120 records a second are 72,000 records: that is the price of no
/// disk traffic while recording.
///
/// Threading: safe.
class EventLog {
public:
    void append(InputEvent event);
    std::size_t appendReturningIndex(InputEvent event);

    /// Adds what was found out about a record later. An index outside the log is ignored.
    void setAX(std::size_t index, AXInfo info);

    /// A copy with every `t` counted from `epoch`, without what came before it, sorted by `t`;
    /// records of one `t` keep the order they arrived in.
    std::vector<InputEvent> finished(double epoch) const;

private:
    mutable std::mutex m_mutex;
    std::vector<InputEvent> m_events; // `t` on the host's clock
};

} // namespace zento
