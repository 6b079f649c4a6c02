#include "ZentoCapture/Backends/AtSpiWorker.h"

#include "ZentoCapture/ThreadName.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

namespace zento {

namespace {

class Worker {
public:
    /// Never destroyed: a call into a hung application would hold up the end of the process.
    static Worker& shared()
    {
        static auto* const kWorker = new Worker;
        return *kWorker;
    }

    void add(std::function<void()> question)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_questions.push_back(std::move(question));
        }
        m_added.notify_one();
    }

private:
    Worker()
    {
        std::thread([this] { run(); }).detach();
    }

    [[noreturn]] void run()
    {
        nameThread("capture.atspi");
        for (;;) {
            const auto question = next();
            try {
                question();
            } catch (const std::exception&) {
                continue;
            }
        }
    }

    std::function<void()> next()
    {
        std::unique_lock lock(m_mutex);
        m_added.wait(lock, [this] { return !m_questions.empty(); });
        auto question = std::move(m_questions.front());
        m_questions.pop_front();
        return question;
    }

    std::mutex m_mutex;
    std::condition_variable m_added;
    std::deque<std::function<void()>> m_questions;
};

} // namespace

void askAccessibility(std::function<void()> question)
{
    Worker::shared().add(std::move(question));
}

} // namespace zento
