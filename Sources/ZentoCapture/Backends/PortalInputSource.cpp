#include "ZentoCapture/Backends/PortalInputSource.h"

#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCapture/ThreadName.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace zento {

PortalInputSource::PortalInputSource(
    std::shared_ptr<const PointerTrack> pointer, std::unique_ptr<InputDevices> devices)
    : m_pointer(std::move(pointer))
    , m_devices(std::move(devices))
{
}

PortalInputSource::~PortalInputSource()
{
    stop();
}

void PortalInputSource::start(Handler handler)
{
    m_handler = std::move(handler);
    if (m_devices) {
        m_thread = std::thread([this] { run(); });
    }
}

void PortalInputSource::stop()
{
    m_wake.wake();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

std::optional<Vec2> PortalInputSource::pointerPosition()
{
    return m_pointer->newest();
}

std::optional<PointerSample> PortalInputSource::pointerSample(double now)
{
    const double time = now - PointerTrack::kDelay;
    const auto point = m_pointer->at(time);
    return point ? std::optional(PointerSample{time, *point}) : std::nullopt;
}

void PortalInputSource::run()
{
    nameThread("capture.input");
    while (!m_wake.isAwake()) {
        wait();
        read();
        handOver(monotonicSeconds() - PointerTrack::kDelay);
    }
    handOver(std::numeric_limits<double>::infinity());
}

/// For the devices, or for the time of what waits.
void PortalInputSource::wait() const
{
    std::array<pollfd, 2> entries{
        {{.fd = m_devices->fileDescriptor(), .events = POLLIN, .revents = 0},
         {.fd = m_wake.fileDescriptor(), .events = POLLIN, .revents = 0}}};
    int milliseconds = -1;
    if (!m_waiting.empty()) {
        const double due = m_waiting.front().time + PointerTrack::kDelay;
        milliseconds = static_cast<int>(std::ceil(std::max(0.0, due - monotonicSeconds()) * 1000));
    }
    ::poll(entries.data(), entries.size(), milliseconds);
}

void PortalInputSource::read()
{
    m_devices->read([this](const RawInput& input) { m_waiting.push_back(input); });
}

/// What happened before anybody knew where the pointer is stays away.
void PortalInputSource::handOver(double upTo)
{
    while (!m_waiting.empty() && m_waiting.front().time <= upTo) {
        RawInput input = m_waiting.front();
        m_waiting.pop_front();
        if (const auto point = m_pointer->at(input.time)) {
            input.point = *point;
            m_handler(input);
        }
    }
}

} // namespace zento
