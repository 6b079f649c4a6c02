#include "ZentoCapture/Backends/X11FrameSource.h"

#include "ZentoCapture/FramePacing.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCapture/ThreadName.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace zento {

namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();

Error lostDisplay()
{
    return {ErrorCode::kNoDisplay, "the display being recorded is gone"};
}

} // namespace

X11FrameSource::X11FrameSource(
    const std::string& displayName, int width, int height, const SubjectFactory& makeSubject)
    : m_connection(displayName)
    , m_frames(m_connection, width, height)
{
    requireSupportedPixels(m_connection);
    m_subject = makeSubject(m_connection);
}

X11FrameSource::~X11FrameSource()
{
    stop();
}

void X11FrameSource::start(FrameHandler onFrame, EndHandler onEnd)
{
    m_onFrame = std::move(onFrame);
    m_onEnd = std::move(onEnd);
    m_thread = std::thread([this] { run(); });
}

void X11FrameSource::stop()
{
    m_wake.wake();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void X11FrameSource::run()
{
    nameThread("capture.video");
    bool mayHaveChanged = true; // the first frame
    double slot = monotonicSeconds();
    while (!m_wake.isAwake()) {
        const double now = monotonicSeconds();
        if (mayHaveChanged && now >= slot) {
            slot = nextSlot(slot, now);
            mayHaveChanged = deliver();
        }
        mayHaveChanged = readEvents() || mayHaveChanged;
        if (m_connection.isBroken()) {
            m_onEnd(lostDisplay());
            return;
        }
        wait(mayHaveChanged ? slot : kForever);
    }
}

/// Whether there may be something new to see.
bool X11FrameSource::readEvents()
{
    bool mayHaveChanged = false;
    while (const auto event = m_connection.nextEvent()) {
        mayHaveChanged =
            m_subject->handle(*event) == X11Subject::News::MayHaveChanged || mayHaveChanged;
    }
    return mayHaveChanged;
}

/// Whether there is still something to be shown afterwards.
bool X11FrameSource::deliver()
{
    const auto want = m_owesPicture ? X11Subject::Want::Always : X11Subject::Want::IfChanged;
    if (!m_subject->draw(m_frames, want)) {
        return false;
    }
    // Stamped when the picture is here: nothing it shows happened later, so an effect never comes
    // before its cause. It is late by the time of the copy at most.
    const double time = monotonicSeconds();
    // The server answers in order: what happened before the picture was read has been told by now.
    // A window on its way to be minimised or closed is for a moment an empty frame.
    const bool mayHaveChanged = readEvents();
    if (m_subject->isOutdated()) {
        return true;
    }
    m_owesPicture = false;
    if (m_frames.isUnchanged()) {
        return mayHaveChanged; // repainted with the same pixels
    }
    if (m_onFrame({.picture = m_frames.view(), .time = time}) == FrameVerdict::Refused) {
        m_owesPicture = true;
        return true;
    }
    m_frames.keep();
    return mayHaveChanged;
}

void X11FrameSource::wait(double untilSeconds)
{
    std::array<pollfd, 2> entries{
        {{.fd = m_connection.fileDescriptor(), .events = POLLIN, .revents = 0},
         {.fd = m_wake.fileDescriptor(), .events = POLLIN, .revents = 0}}};
    timespec timeout{};
    if (std::isfinite(untilSeconds)) {
        const double seconds = std::max(0.0, untilSeconds - monotonicSeconds());
        timeout.tv_sec = static_cast<time_t>(seconds);
        timeout.tv_nsec = static_cast<long>((seconds - std::floor(seconds)) * 1e9);
    }
    ::ppoll(
        entries.data(), entries.size(), std::isfinite(untilSeconds) ? &timeout : nullptr, nullptr);
}

} // namespace zento
