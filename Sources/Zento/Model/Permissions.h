#pragma once

#include "Zento/Model/Clock.h"
#include "Zento/Model/Worker.h"

#include <QObject>

#include <functional>
#include <memory>

namespace zento {

/// What a recording may use.
struct PermissionState {
    bool screen = false;        // there is a display to capture
    bool input = false;         // keys and clicks can be read
    bool accessibility = false; // applications can be asked what was clicked
    bool microphone = false;    // there is one
    bool camera = false;        // there is one
    bool needsInput = true; // else a recording does with the pointer's way, and makes less of it
    bool window = true;     // a single window can be recorded
    bool scrolling = true;  // a page can be scrolled for the user
    bool operator==(const PermissionState&) const = default;
};

/// The permissions as they are now: read once at the start, then every 1.5 seconds.
///
/// Threading: the main thread; the system is asked in the background.
class Permissions : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool screen READ screen NOTIFY changed)
    Q_PROPERTY(bool input READ input NOTIFY changed)
    Q_PROPERTY(bool accessibility READ accessibility NOTIFY changed)
    Q_PROPERTY(bool microphone READ microphone NOTIFY changed)
    Q_PROPERTY(bool camera READ camera NOTIFY changed)
    Q_PROPERTY(bool needsInput READ needsInput NOTIFY changed)
    Q_PROPERTY(bool window READ window NOTIFY changed)
    Q_PROPERTY(bool scrolling READ scrolling NOTIFY changed)
    /// Whether a recording can be made at all: screen, and where they are needed input and
    /// accessibility.
    Q_PROPERTY(bool canRecord READ canRecord NOTIFY changed)

public:
    /// What the system says; blocks, and runs in the background.
    using Probe = std::function<PermissionState()>;

    /// Asks the system, or shows the user where the answer is given. Does not block.
    struct Requests {
        std::function<void()> input;
        std::function<void()> accessibility;
        std::function<void()> microphone;
        std::function<void()> camera;
    };

    Permissions(Clock& clock, Worker& worker, Probe probe, Requests requests);

    /// Reads now and keeps reading.
    void start();

    const PermissionState& state() const { return m_state; }
    bool screen() const { return m_state.screen; }
    bool input() const { return m_state.input; }
    bool accessibility() const { return m_state.accessibility; }
    bool microphone() const { return m_state.microphone; }
    bool camera() const { return m_state.camera; }
    bool needsInput() const { return m_state.needsInput; }
    bool window() const { return m_state.window; }
    bool scrolling() const { return m_state.scrolling; }
    bool canRecord() const { return screen() && (!needsInput() || (input() && accessibility())); }

    Q_INVOKABLE void requestInputPermission();
    Q_INVOKABLE void requestAccessibilityPermission();
    Q_INVOKABLE void requestMicrophonePermission();
    Q_INVOKABLE void requestCameraPermission();

Q_SIGNALS:
    /// One of them has another value than before.
    void changed();

private:
    void read();

    Clock& m_clock;
    Worker& m_worker;
    Probe m_probe;
    Requests m_requests;
    PermissionState m_state;
    std::unique_ptr<Timer> m_timer;
    bool m_isReading = false;
};

} // namespace zento
