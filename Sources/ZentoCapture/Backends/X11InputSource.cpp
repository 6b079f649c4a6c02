#include "ZentoCapture/Backends/X11InputSource.h"

#include "ZentoCapture/Backends/ServerTime.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCapture/ThreadName.h"

#include <poll.h>

#include <array>
#include <utility>

namespace zento {

namespace {

// Grabs of other clients hide all raw events from a client that asks for XInput 2.0.
constexpr std::uint16_t kXInputMajor = 2;
constexpr std::uint16_t kXInputMinor = 2;

constexpr std::uint32_t kLeftButton = 1;
constexpr std::uint32_t kRightButton = 3;

/// How long `stop` waits for the server to hand over what it has gathered.
constexpr double kLastWordsSeconds = 0.5;

double timeOf(xcb_timestamp_t stamp)
{
    return secondsOfServerTime(stamp, monotonicSeconds());
}

/// Notches of one press of a wheel button; up and left positive.
Vec2 notchesOfButton(std::uint32_t button)
{
    switch (button) {
    case 4:
        return {0, 1};
    case 5:
        return {0, -1};
    case 6:
        return {1, 0};
    case 7:
        return {-1, 0};
    default:
        return {};
    }
}

void waitFor(std::array<pollfd, 3>& entries, double seconds)
{
    ::poll(entries.data(), entries.size(), seconds < 0 ? -1 : static_cast<int>(seconds * 1000));
}

} // namespace

X11InputSource::X11InputSource(std::string displayName)
    : m_displayName(std::move(displayName))
    , m_connection(m_displayName)
    , m_query(m_displayName)
    , m_scale(displayScale(m_query))
{
}

X11InputSource::~X11InputSource()
{
    stop();
}

void X11InputSource::start(Handler handler)
{
    requireXInput();
    m_handler = std::move(handler);
    m_keyboard = X11Keyboard::read(m_displayName);
    m_scrollDevices = X11ScrollDevices(m_connection);
    m_record = X11Record::open(m_displayName);
    selectEvents();
    m_thread = std::thread([this] { run(); });
}

void X11InputSource::stop()
{
    m_wake.wake();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

std::optional<Vec2> X11InputSource::pointerPosition()
{
    const auto pointer = m_query.pointer();
    return pointer ? std::optional(points(pointer->position)) : std::nullopt;
}

void X11InputSource::requireXInput()
{
    const auto* const extension = xcb_get_extension_data(m_connection.get(), &xcb_input_id);
    if (extension != nullptr && extension->present != 0) {
        m_xinputOpcode = extension->major_opcode;
        const XcbPtr<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
            m_connection.get(),
            xcb_input_xi_query_version(m_connection.get(), kXInputMajor, kXInputMinor),
            nullptr));
        if (version
            && std::pair(version->major_version, version->minor_version)
                   >= std::pair(kXInputMajor, kXInputMinor)) {
            return;
        }
    }
    throw Error(
        ErrorCode::kNoInput,
        "The display isn't letting Zento see clicks and typing, and the edit is made from them. "
        "Check that the X server offers XInput 2.2 or later, then try again.");
}

/// Motion is asked for only while some device scrolls by it: a fast mouse makes 1000 a second.
void X11InputSource::selectEvents()
{
    struct Selection {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    };
    std::uint32_t raw = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS;
    if (!m_scrollDevices.isEmpty()) {
        raw |= XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
    }
    if (!m_record) {
        raw |= XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS;
    }
    const std::array selections{
        Selection{{.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1}, raw},
        Selection{
            {.deviceid = XCB_INPUT_DEVICE_ALL, .mask_len = 1},
            XCB_INPUT_XI_EVENT_MASK_HIERARCHY | XCB_INPUT_XI_EVENT_MASK_DEVICE_CHANGED}};
    for (const Selection& selection : selections) {
        xcb_input_xi_select_events(m_connection.get(), m_connection.root(), 1, &selection.head);
    }
    xcb_flush(m_connection.get());
}

void X11InputSource::run()
{
    nameThread("capture.input");
    std::array<pollfd, 3> entries{
        {{.fd = m_connection.fileDescriptor(), .events = POLLIN, .revents = 0},
         {.fd = m_record ? m_record->fileDescriptor() : -1, .events = POLLIN, .revents = 0},
         {.fd = m_wake.fileDescriptor(), .events = POLLIN, .revents = 0}}};
    while (!m_wake.isAwake() && !m_connection.isBroken()) {
        readRaw();
        const auto recorded = [this](const X11Record::Event& event) { handleRecorded(event); };
        if (entries[1].fd >= 0 && m_record->read(recorded) == X11Record::State::Ended) {
            entries[1].fd = -1;
        }
        waitFor(entries, -1);
    }
    finishReading();
}

void X11InputSource::finishReading()
{
    // A round trip, after which every event the server has sent is here.
    const XcbPtr<xcb_get_input_focus_reply_t> here(xcb_get_input_focus_reply(
        m_connection.get(), xcb_get_input_focus(m_connection.get()), nullptr));
    readRaw();
    if (!m_record) {
        return;
    }
    m_record->end();
    std::array<pollfd, 3> entries{
        {{.fd = m_record->fileDescriptor(), .events = POLLIN, .revents = 0},
         {.fd = -1, .events = 0, .revents = 0},
         {.fd = -1, .events = 0, .revents = 0}}};
    const double deadline = monotonicSeconds() + kLastWordsSeconds;
    while (m_record->read([this](const X11Record::Event& event) { handleRecorded(event); })
               == X11Record::State::Running
           && monotonicSeconds() < deadline) {
        waitFor(entries, kLastWordsSeconds);
    }
}

void X11InputSource::readRaw()
{
    while (const auto event = m_connection.nextEvent()) {
        const unsigned type = event->response_type & 0x7FU;
        if (type == XCB_MAPPING_NOTIFY) {
            readKeyboard();
        } else if (type == XCB_GE_GENERIC) {
            handleRaw(*event);
        }
    }
}

void X11InputSource::handleRaw(const xcb_generic_event_t& event)
{
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != m_xinputOpcode) {
        return;
    }
    switch (generic.event_type) {
    case XCB_INPUT_RAW_BUTTON_PRESS:
    case XCB_INPUT_RAW_BUTTON_RELEASE:
        handleRawButton(reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event));
        break;
    case XCB_INPUT_RAW_KEY_PRESS:
        handleRawKey(reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event));
        break;
    case XCB_INPUT_RAW_MOTION: {
        const auto& motion = reinterpret_cast<const xcb_input_raw_motion_event_t&>(event);
        emitScroll(timeOf(motion.time), m_scrollDevices.notches(motion));
        break;
    }
    case XCB_INPUT_HIERARCHY:
    case XCB_INPUT_DEVICE_CHANGED:
        m_scrollDevices = X11ScrollDevices(m_connection);
        selectEvents();
        break;
    default:
        break;
    }
}

void X11InputSource::handleRawButton(const xcb_input_raw_button_press_event_t& event)
{
    const bool isPress = event.event_type == XCB_INPUT_RAW_BUTTON_PRESS;
    const double time = timeOf(event.time);
    if (notchesOfButton(event.detail) != Vec2{}) {
        // A device that scrolls smoothly presses a button for every whole notch, too.
        const bool isEmulated = (event.flags & XCB_INPUT_POINTER_EVENT_FLAGS_POINTER_EMULATED) != 0;
        if (isPress && !(isEmulated && m_scrollDevices.contains(event.sourceid))) {
            emitScroll(time, notchesOfButton(event.detail));
        }
        return;
    }
    const auto pointer = m_record ? std::nullopt : m_query.pointer();
    if (!pointer) {
        return;
    }
    const Vec2 point = points(pointer->position);
    if (event.detail == kLeftButton) {
        m_handler(
            {.type = isPress ? RawInputType::LeftDown : RawInputType::LeftUp,
             .time = time,
             .point = point});
    } else if (event.detail == kRightButton && isPress) {
        m_handler({.type = RawInputType::RightDown, .time = time, .point = point});
    }
}

void X11InputSource::handleRawKey(const xcb_input_raw_key_press_event_t& event)
{
    if (const auto pointer = m_query.pointer()) {
        emitKey(timeOf(event.time), pointer->position, event.detail, pointer->mask);
    }
}

void X11InputSource::handleRecorded(const X11Record::Event& event)
{
    const double time = timeOf(event.time);
    const Vec2 pixel{static_cast<double>(event.root_x), static_cast<double>(event.root_y)};
    if (event.response_type == XCB_KEY_PRESS) {
        emitKey(time, pixel, event.detail, event.state);
    } else if (event.detail == kLeftButton && event.response_type == XCB_BUTTON_PRESS) {
        m_handler({.type = RawInputType::LeftDown, .time = time, .point = points(pixel)});
    } else if (event.detail == kLeftButton && event.response_type == XCB_BUTTON_RELEASE) {
        m_handler({.type = RawInputType::LeftUp, .time = time, .point = points(pixel)});
    } else if (event.detail == kRightButton && event.response_type == XCB_BUTTON_PRESS) {
        m_handler({.type = RawInputType::RightDown, .time = time, .point = points(pixel)});
    }
}

void X11InputSource::readKeyboard()
{
    try {
        m_keyboard = X11Keyboard::read(m_displayName);
    } catch (const Error&) {
        return; // the server is going away; what is known stays
    }
}

void X11InputSource::emitKey(double time, Vec2 pixel, std::uint32_t code, std::uint16_t state)
{
    if (code >= m_keyboard.virtualKeyCodes.size() || m_keyboard.modifiers.test(code)) {
        return;
    }
    m_handler(
        {.type = RawInputType::KeyDown,
         .time = time,
         .point = points(pixel),
         .keyCode = m_keyboard.virtualKeyCodes[code],
         .flags = keyFlags(state)});
}

void X11InputSource::emitScroll(double time, Vec2 notches)
{
    if (notches == Vec2{}) {
        return;
    }
    m_handler(
        {.type = RawInputType::Scroll,
         .time = time,
         .point = pointerPosition().value_or(Vec2{}),
         .scroll = {notches.x * kPointsPerNotch, notches.y * kPointsPerNotch}});
}

Vec2 X11InputSource::points(Vec2 pixel) const
{
    return {pixel.x / m_scale, pixel.y / m_scale};
}

} // namespace zento
