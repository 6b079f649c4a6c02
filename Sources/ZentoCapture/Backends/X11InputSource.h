#pragma once

#include "ZentoCapture/Backends/WakeFd.h"
#include "ZentoCapture/Backends/X11Connection.h"
#include "ZentoCapture/Backends/X11Keyboard.h"
#include "ZentoCapture/Backends/X11Record.h"
#include "ZentoCapture/Backends/X11ScrollDevices.h"
#include "ZentoCapture/InputSource.h"

#include <xcb/xinput.h>

#include <memory>
#include <string>
#include <thread>

namespace zento {

/// The input of an X server, through all windows and grabs.
///
/// Buttons and keys come from the RECORD extension, the wheel from XInput's raw events, which alone
/// tell smooth scrolling. On a server without RECORD raw events serve for all: a click then lies
/// where the pointer is when the event arrives (about a millisecond later, or later still while an
/// application freezes the pointer), and the repeats of a held key are not seen.
///
/// Times are the server's own, which count CLOCK_MONOTONIC, and never those of arrival.
class X11InputSource final : public InputSource {
public:
    explicit X11InputSource(std::string displayName);
    ~X11InputSource() override;

    void start(Handler handler) override;
    void stop() override;
    std::optional<Vec2> pointerPosition() override;

private:
    void requireXInput();
    void selectEvents();
    void run();
    void finishReading();
    void readRaw();
    void handleRaw(const xcb_generic_event_t& event);
    void handleRawButton(const xcb_input_raw_button_press_event_t& event);
    void handleRawKey(const xcb_input_raw_key_press_event_t& event);
    void handleRecorded(const X11Record::Event& event);
    void readKeyboard();
    void emitKey(double time, Vec2 pixel, std::uint32_t code, std::uint16_t state);
    void emitScroll(double time, Vec2 notches);
    Vec2 points(Vec2 pixel) const;

    std::string m_displayName;
    X11Connection m_connection; // whose events are read
    X11Connection m_query;      // asked for the pointer, also by another thread
    double m_scale = 1;
    std::uint8_t m_xinputOpcode = 0;
    std::unique_ptr<X11Record> m_record; // null on a server without it
    X11Keyboard m_keyboard;
    X11ScrollDevices m_scrollDevices;
    Handler m_handler;
    WakeFd m_wake;
    std::thread m_thread;
};

} // namespace zento
