#include "ZentoMedia/Ffmpeg/DiskSync.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>

namespace zento::ffmpeg {

DiskSync::DiskSync(int descriptor)
    : m_descriptor(descriptor)
    , m_thread([this](const std::stop_token& stop) { run(stop); })
{
}

void DiskSync::request()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isRequested = true;
    }
    m_wake.notify_one();
}

void DiskSync::run(const std::stop_token& stop)
{
    pthread_setname_np(pthread_self(), "file.sync");
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            if (!m_wake.wait(lock, stop, [this] { return m_isRequested; }))
                return;
            m_isRequested = false;
        }
        // What is no file on a disk cannot be sent on to one.
        if (fdatasync(m_descriptor) != 0 && errno != EINVAL && m_errorNumber == 0)
            m_errorNumber = errno;
    }
}

} // namespace zento::ffmpeg
