#pragma once

#include <functional>
#include <memory>

struct pw_core; // NOLINT(readability-identifier-naming): the library's own name
struct pw_loop; // NOLINT(readability-identifier-naming): the library's own name

namespace zento {

/// A connection to the PipeWire service of this session, and the thread its answers come on.
///
/// Threading: every callback runs on that thread, which holds the lock meanwhile; all other use of
/// what hangs on the connection needs a `Lock`. Making and destroying the object needs none.
class PipeWireLoop {
    struct State;

public:
    /// `threadName`: at most 15 bytes, of static life. Throws `Error` of the system when no service
    /// answers.
    /// `remote`: the descriptor of a connection that somebody has opened for us, which is closed
    /// with this object in any case; -1: the session's own service.
    explicit PipeWireLoop(const char* threadName, int remote = -1);
    ~PipeWireLoop();
    PipeWireLoop(const PipeWireLoop&) = delete;
    PipeWireLoop& operator=(const PipeWireLoop&) = delete;

    class Lock {
    public:
        explicit Lock(PipeWireLoop& loop);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        PipeWireLoop& m_loop;
    };

    // With the lock:

    /// Waits until the service has answered all it was asked. False if it has gone or does not
    /// within two seconds.
    bool roundTrip();

    pw_core* core() const;
    pw_loop* loop() const;

private:
    std::unique_ptr<State> m_state;
};

/// Calls a function on the loop's thread when its time has come.
class PipeWireTimer {
public:
    PipeWireTimer(PipeWireLoop& loop, std::function<void()> ring);
    ~PipeWireTimer();
    PipeWireTimer(const PipeWireTimer&) = delete;
    PipeWireTimer& operator=(const PipeWireTimer&) = delete;

    /// Once, in place of what was set before. With the lock. `seconds` from now, [0, ∞).
    void set(double seconds);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
