#pragma once

#include "ZentoCore/InputEvent.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace zento {

/// What happened to a log since it was last asked.
struct EventNews {
    struct Found {
        std::size_t index = 0; // of a record that was told before
        AXInfo ax;
    };

    std::vector<InputEvent> events; // appended, in that order
    std::vector<Found> found;
};

/// The input of one recording, in memory, in the order it arrived.
///
/// Ten minutes of the pointer's 120 records a second are 72,000 records.
///
/// Threading: safe.
class EventLog {
public:
    void append(InputEvent event);
    std::size_t appendReturningIndex(InputEvent event);

    /// Adds what was found out about a record later. An index outside the log is ignored.
    void setAX(std::size_t index, AXInfo info);

    /// For one asker: what it writes down, in order, makes the same log again.
    EventNews takeNews();

    /// A copy with every `t` counted from `epoch`, without what came before it, sorted by `t`;
    /// records of one `t` keep the order they arrived in.
    std::vector<InputEvent> finished(double epoch) const;

private:
    mutable std::mutex m_mutex;
    std::vector<InputEvent> m_events; // `t` on the host's clock
    std::size_t m_toldCount = 0;      // of them
    std::vector<EventNews::Found> m_found;
};

} // namespace zento
