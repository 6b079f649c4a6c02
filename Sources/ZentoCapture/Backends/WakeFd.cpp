#include "ZentoCapture/Backends/WakeFd.h"

#include "ZentoCore/Error.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>

namespace zento {

WakeFd::WakeFd()
    : m_fileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_fileDescriptor < 0) {
        throw systemError("could not create", "a wake-up event", errno);
    }
}

WakeFd::~WakeFd()
{
    close(m_fileDescriptor);
}

void WakeFd::wake() noexcept
{
    eventfd_write(m_fileDescriptor, 1);
}

bool WakeFd::isAwake() const
{
    pollfd entry{.fd = m_fileDescriptor, .events = POLLIN, .revents = 0};
    return ::poll(&entry, 1, 0) > 0;
}

} // namespace zento
