#pragma once

#include "ZentoCapture/Backends/X11Connection.h"

#include <xcb/record.h>

#include <functional>
#include <memory>
#include <string>

namespace zento {

/// The core input events of a server by its RECORD extension: unlike raw events they carry where
/// the pointer was and the modifiers at that moment, and they include the repeats of a held key.
///
/// The server gathers them and sends them along with any other answer, so somebody must be asking
/// it something now and then; `end` gets the rest.
///
/// Threading: one thread; `end` also from another.
class X11Record {
public:
    /// A press or release of a key or button; all four have this form.
    using Event = xcb_button_press_event_t;

    /// Nothing if the server has no RECORD extension. The stream runs on return.
    static std::unique_ptr<X11Record> open(const std::string& displayName);

    int fileDescriptor() const { return m_data.fileDescriptor(); }

    enum class State : unsigned char { Running, Ended };

    /// Hands over what has arrived. Never waits.
    State read(const std::function<void(const Event&)>& handler);

    /// Makes the server send what it has gathered and end the stream.
    void end();

private:
    explicit X11Record(const std::string& displayName);
    bool enable();

    X11Connection m_control;
    X11Connection m_data;
    xcb_record_context_t m_context = 0;
    unsigned m_sequence = 0; // of the request whose many replies are the stream
};

} // namespace zento
