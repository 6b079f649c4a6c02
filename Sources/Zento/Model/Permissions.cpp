#include "Zento/Model/Permissions.h"

#include <utility>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kPollInterval{1500};

void call(const std::function<void()>& request)
{
    if (request) {
        request();
    }
}

} // namespace

Permissions::Permissions(Clock& clock, Worker& worker, Probe probe, Requests requests)
    : m_clock(clock)
    , m_worker(worker)
    , m_probe(std::move(probe))
    , m_requests(std::move(requests))
{
}

void Permissions::start()
{
    read();
    m_timer = m_clock.every(kPollInterval, [this] { read(); });
}

void Permissions::requestInputPermission()
{
    call(m_requests.input);
}

void Permissions::requestAccessibilityPermission()
{
    call(m_requests.accessibility);
}

void Permissions::requestMicrophonePermission()
{
    call(m_requests.microphone);
}

void Permissions::requestCameraPermission()
{
    call(m_requests.camera);
}

/// One question at a time: a bus that hangs must not pile them up.
void Permissions::read()
{
    if (m_isReading) {
        return;
    }
    m_isReading = true;
    compute(m_worker, this, m_probe, [this](const Outcome<PermissionState>& state) {
        m_isReading = false;
        if (state && *state != m_state) {
            m_state = *state;
            Q_EMIT changed();
        }
    });
}

} // namespace zento
