#pragma once

#include "ZentoCapture/Backends/InputDevices.h"
#include "ZentoCapture/Backends/WakeFd.h"
#include "ZentoCapture/InputSource.h"
#include "ZentoCapture/PointerTrack.h"

#include <deque>
#include <memory>
#include <optional>
#include <thread>

namespace zento {

/// Input of a desktop that lets nobody listen: the pointer's way is that of its pictures, and
/// clicks, keys and turns of the wheel come from the devices, if the user may read them.
///
/// A click's place is where the pictures show the pointer at its time. They come later than it, so
/// every input waits `PointerTrack::kDelay` before it is handed over.
class PortalInputSource final : public InputSource {
public:
    /// `devices` may be null.
    PortalInputSource(
        std::shared_ptr<const PointerTrack> pointer, std::unique_ptr<InputDevices> devices);
    ~PortalInputSource() override;
    PortalInputSource(const PortalInputSource&) = delete;
    PortalInputSource& operator=(const PortalInputSource&) = delete;

    void start(Handler handler) override;
    void stop() override;
    Reach reach() const override { return m_devices ? Reach::Everything : Reach::PointerOnly; }
    std::optional<Vec2> pointerPosition() override;

    /// As late as the places are known; nothing before the first one is.
    std::optional<PointerSample> pointerSample(double now) override;

private:
    void run();
    void wait() const;
    void read();
    void handOver(double upTo);

    std::shared_ptr<const PointerTrack> m_pointer;
    std::unique_ptr<InputDevices> m_devices;
    Handler m_handler;
    WakeFd m_wake;
    std::deque<RawInput> m_waiting; // for their places
    std::thread m_thread;
};

} // namespace zento
