#pragma once

#include <QObject>
#include <QPointer>

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace zento {

/// Work away from the main thread, one piece after the other.
///
/// Threading: `run` from the main thread.
class Worker {
public:
    virtual ~Worker() = default;

    /// Runs `work` on the worker's thread, then `done` on the main thread. Neither may throw.
    /// Work that has not begun when the worker ends is dropped, and so is every `done` that
    /// has not run by then.
    virtual void run(std::function<void()> work, std::function<void()> done) = 0;
};

/// A worker with a thread of its own, which the destructor joins after the work under way.
class ThreadWorker final : public Worker {
public:
    /// `Background` stands behind whatever a hand waits for, and so do the threads its work starts.
    enum class Priority { Normal, Background };

    /// `name` is the thread's, of at most 15 bytes.
    explicit ThreadWorker(std::string name, Priority priority = Priority::Normal);
    ~ThreadWorker() override;

    void run(std::function<void()> work, std::function<void()> done) override;

private:
    class Queue;
    std::unique_ptr<Queue> m_queue;
};

/// What a piece of work came to: its result, or the sentence of what it threw.
template <typename T>
using Outcome = std::expected<T, std::string>;

/// `work()` with whatever it throws caught.
template <typename Work, typename T = std::invoke_result_t<Work>>
Outcome<T> attempt(Work& work) noexcept
{
    try {
        if constexpr (std::is_void_v<T>) {
            work();
            return {};
        } else {
            return work();
        }
    } catch (const std::exception& error) {
        return std::unexpected(std::string(error.what()));
    }
}

/// Computes `work()` in the background and hands its outcome to `done` on the main thread, unless
/// `receiver` is gone by then.
template <typename Work, typename Done>
void compute(Worker& worker, QObject* receiver, Work work, Done done)
{
    using T = std::invoke_result_t<Work>;
    const auto outcome = std::make_shared<std::optional<Outcome<T>>>();
    worker.run(
        [outcome, work = std::move(work)]() mutable { *outcome = attempt(work); },
        [outcome, receiver = QPointer<QObject>(receiver), done = std::move(done)]() mutable {
            if (receiver) {
                done(std::move(**outcome));
            }
        });
}

} // namespace zento
