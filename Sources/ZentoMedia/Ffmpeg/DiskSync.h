#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zento::ffmpeg {

/// Sends what is written to a file on to the disk, on the thread "file.sync", so that who writes
/// need not wait for it.
///
/// Threading: `request` by one thread at a time.
class DiskSync {
public:
    /// The file must stay open for as long as this lives.
    explicit DiskSync(int descriptor);

    /// Requests that come while one is under way become one.
    void request();

    int errorNumber() const { return m_errorNumber; } // of the first that failed; 0 without

private:
    void run(const std::stop_token& stop);

    int m_descriptor;
    std::atomic<int> m_errorNumber = 0;
    std::mutex m_mutex; // guards `m_isRequested`
    bool m_isRequested = false;
    std::condition_variable_any m_wake;
    std::jthread m_thread;
};

} // namespace zento::ffmpeg
