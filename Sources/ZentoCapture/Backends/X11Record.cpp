#include "ZentoCapture/Backends/X11Record.h"

#include <xcb/xcbext.h>

#include <array>
#include <cstring>

namespace zento {

namespace {

// The categories of a reply in the protocol.
constexpr std::uint8_t kFromServer = 0;
constexpr std::uint8_t kEndOfData = 5;

bool isButtonOrKey(const X11Record::Event& event)
{
    return event.response_type >= XCB_KEY_PRESS && event.response_type <= XCB_BUTTON_RELEASE;
}

} // namespace

std::unique_ptr<X11Record> X11Record::open(const std::string& displayName)
{
    std::unique_ptr<X11Record> record(new X11Record(displayName));
    return record->enable() ? std::move(record) : nullptr;
}

X11Record::X11Record(const std::string& displayName)
    : m_control(displayName)
    , m_data(displayName)
{
}

bool X11Record::enable()
{
    for (const X11Connection* connection : {&m_control, &m_data}) {
        const auto* const extension = xcb_get_extension_data(connection->get(), &xcb_record_id);
        if (extension == nullptr || extension->present == 0) {
            return false;
        }
        const XcbPtr<xcb_record_query_version_reply_t> version(xcb_record_query_version_reply(
            connection->get(), xcb_record_query_version(connection->get(), 1, 13), nullptr));
    }
    m_context = xcb_generate_id(m_control.get());
    const xcb_record_client_spec_t clients = XCB_RECORD_CS_ALL_CLIENTS;
    xcb_record_range_t range{};
    range.device_events = {.first = XCB_KEY_PRESS, .last = XCB_BUTTON_RELEASE};
    const auto create =
        xcb_record_create_context_checked(m_control.get(), m_context, 0, 1, 1, &clients, &range);
    if (!m_control.succeeded(create)) {
        return false;
    }
    const auto stream = xcb_record_enable_context(m_data.get(), m_context);
    m_sequence = stream.sequence;
    // The first reply says that the stream has begun.
    return XcbPtr<xcb_record_enable_context_reply_t>(
               xcb_record_enable_context_reply(m_data.get(), stream, nullptr))
           != nullptr;
}

X11Record::State X11Record::read(const std::function<void(const Event&)>& handler)
{
    m_data.nextEvent(); // reads from the connection; no event is expected on it
    void* memory = nullptr;
    xcb_generic_error_t* error = nullptr;
    while (xcb_poll_for_reply(m_data.get(), m_sequence, &memory, &error) != 0) {
        const XcbPtr<xcb_generic_error_t> ownedError(error);
        const XcbPtr<xcb_record_enable_context_reply_t> reply(
            static_cast<xcb_record_enable_context_reply_t*>(memory));
        if (!reply || reply->category == kEndOfData) {
            return State::Ended;
        }
        if (reply->category != kFromServer) {
            continue;
        }
        const std::uint8_t* const data = xcb_record_enable_context_data(reply.get());
        const int length = xcb_record_enable_context_data_length(reply.get());
        Event event;
        constexpr int kSize = sizeof event;
        for (int offset = 0; offset + kSize <= length; offset += kSize) {
            std::memcpy(&event, data + offset, sizeof event);
            if (isButtonOrKey(event)) {
                handler(event);
            }
        }
    }
    return m_data.isBroken() ? State::Ended : State::Running;
}

void X11Record::end()
{
    xcb_record_disable_context(m_control.get(), m_context);
    xcb_flush(m_control.get());
}

} // namespace zento
