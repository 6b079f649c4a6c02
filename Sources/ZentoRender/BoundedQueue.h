#pragma once

#include <queue>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <utility>

namespace zento {

/// Hands values from one thread to another in order, a bounded number ahead.
///
/// Threading: every operation from any thread.
template <typename Value>
class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity)
        : m_capacity(capacity)
    {
    }

    /// Waits for room. False, and the value is dropped, once the queue is closed or abandoned.
    bool push(Value value)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_closed || m_values.size() < m_capacity; });
        if (m_closed)
            return false;
        m_values.push(std::move(value));
        m_changed.notify_all();
        return true;
    }

    /// Waits for a value. Nothing once the queue is abandoned, or closed and empty.
    std::optional<Value> pop()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_closed || !m_values.empty(); });
        std::optional<Value> value;
        if (!m_values.empty()) {
            value.emplace(std::move(m_values.front()));
            m_values.pop();
            m_changed.notify_all();
        }
        return value;
    }

    /// No more values come; those inside are still handed out.
    void close()
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
        m_changed.notify_all();
    }

    /// Ends both sides at once and drops what is inside.
    void abandon()
    {
        std::queue<Value> dropped; // destroyed after the lock
        const std::lock_guard lock(m_mutex);
        m_closed = true;
        m_values.swap(dropped);
        m_changed.notify_all();
    }

private:
    const std::size_t m_capacity;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::queue<Value> m_values;
    bool m_closed = false;
};

} // namespace zento
