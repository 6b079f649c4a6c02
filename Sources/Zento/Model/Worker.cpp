#include "Zento/Model/Worker.h"

#include <pthread.h>
#include <sys/resource.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <stop_token>
#include <thread>

namespace zento {

/// The pieces that wait, the thread that does them, and the object on the main thread that hears of
/// their end: what is posted to it goes when it does.
class ThreadWorker::Queue {
public:
    Queue(std::string name, Priority priority)
        : m_thread([this, name = std::move(name), priority](const std::stop_token& stop) {
            pthread_setname_np(pthread_self(), name.c_str());
            if (priority == Priority::Background) {
                constexpr int kNice = 10;
                setpriority(PRIO_PROCESS, 0, kNice); // of this thread alone, and who it starts
            }
            run(stop);
        })
    {
    }

    void add(std::function<void()> work, std::function<void()> done)
    {
        const std::lock_guard lock(m_mutex);
        m_pieces.push_back({std::move(work), std::move(done)});
        m_added.notify_one();
    }

private:
    struct Piece {
        std::function<void()> work;
        std::function<void()> done;
    };

    std::optional<Piece> next(const std::stop_token& stop)
    {
        std::unique_lock lock(m_mutex);
        if (!m_added.wait(lock, stop, [this] { return !m_pieces.empty(); })
            || stop.stop_requested()) {
            return std::nullopt;
        }
        Piece piece = std::move(m_pieces.front());
        m_pieces.pop_front();
        return piece;
    }

    void run(const std::stop_token& stop)
    {
        while (auto piece = next(stop)) {
            piece->work();
            piece->work = nullptr;
            QMetaObject::invokeMethod(&m_main, std::move(piece->done), Qt::QueuedConnection);
        }
    }

    QObject m_main;
    std::mutex m_mutex; // guards the pieces
    std::condition_variable_any m_added;
    std::deque<Piece> m_pieces;
    std::jthread m_thread; // ends before what it uses
};

ThreadWorker::ThreadWorker(std::string name, Priority priority)
    : m_queue(std::make_unique<Queue>(std::move(name), priority))
{
}

ThreadWorker::~ThreadWorker() = default;

void ThreadWorker::run(std::function<void()> work, std::function<void()> done)
{
    m_queue->add(std::move(work), std::move(done));
}

} // namespace zento
