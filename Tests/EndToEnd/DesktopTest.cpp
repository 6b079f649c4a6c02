#include "DesktopTest.h"

#include <poll.h>
#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>
#include <xcb/xtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <utility>

namespace zento {

namespace {

std::optional<PrivateDesktop> sharedStage;

/// Starts the desktop before a test can start a thread, and ends it before the process does.
class StageEnvironment final : public testing::Environment {
public:
    void SetUp() override
    {
        sharedStage.emplace(DesktopSize{640, 360});
        for (const auto& [name, value] : sharedStage->environment()) {
            setenv(name.c_str(), value.c_str(), 1); // NOLINT(concurrency-mt-unsafe): no thread yet
        }
    }
    void TearDown() override { sharedStage.reset(); }
};

const auto* const kEnvironment = testing::AddGlobalTestEnvironment(new StageEnvironment);

/// The one output of the server.
xcb_randr_output_t onlyOutput(xcb_connection_t* connection)
{
    xcb_randr_get_screen_resources_current_reply_t* const reply =
        xcb_randr_get_screen_resources_current_reply(
            connection,
            xcb_randr_get_screen_resources_current(connection, rootOf(connection)),
            nullptr);
    const xcb_randr_output_t output = *xcb_randr_get_screen_resources_current_outputs(reply);
    std::free(reply);
    return output;
}

/// Cuts a monitor out of the screen. Its name. The server's own monitor is gone as soon as another
/// one claims its output.
xcb_atom_t defineMonitor(
    xcb_connection_t* connection,
    const std::string& name,
    const Rect& rect,
    const std::vector<xcb_randr_output_t>& outputs)
{
    xcb_intern_atom_reply_t* const atom = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr);
    xcb_randr_set_monitor_request_t head{.window = rootOf(connection)};
    xcb_randr_monitor_info_t monitor{
        .name = atom->atom,
        .nOutput = static_cast<std::uint16_t>(outputs.size()),
        .x = static_cast<std::int16_t>(rect.x),
        .y = static_cast<std::int16_t>(rect.y),
        .width = static_cast<std::uint16_t>(rect.w),
        .height = static_cast<std::uint16_t>(rect.h),
        .width_in_millimeters = 100,
        .height_in_millimeters = 100};
    std::free(atom);
    // By hand: libxcb 1.15 closes the connection over the length its own function computes. It
    // wants two spare parts in front.
    const xcb_protocol_request_t request{
        .count = 3, .ext = &xcb_randr_id, .opcode = XCB_RANDR_SET_MONITOR, .isvoid = 1};
    std::vector<xcb_randr_output_t> claimed = outputs;
    std::array<iovec, 5> parts{
        {{},
         {},
         {&head, sizeof head},
         {&monitor, sizeof monitor},
         {claimed.data(), claimed.size() * sizeof(xcb_randr_output_t)}}};
    xcb_send_request(connection, 0, parts.data() + 2, &request);
    roundTrip(connection);
    return monitor.name;
}

} // namespace

XcbConnection connectTo(const std::string& display)
{
    XcbConnection connection(xcb_connect(display.c_str(), nullptr));
    if (xcb_connection_has_error(connection.get()) != 0) {
        throw std::runtime_error("no X server at " + display);
    }
    return connection;
}

xcb_window_t rootOf(xcb_connection_t* connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

void roundTrip(xcb_connection_t* connection)
{
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

bool eventually(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

TestUser::TestUser(const std::string& display)
    : m_connection(connectTo(display))
    , m_root(rootOf(m_connection.get()))
{
}

TestUser::~TestUser() = default;

void TestUser::move(int x, int y)
{
    act(XCB_MOTION_NOTIFY, 0, x, y);
}
void TestUser::press(std::uint8_t button)
{
    act(XCB_BUTTON_PRESS, button);
}
void TestUser::release(std::uint8_t button)
{
    act(XCB_BUTTON_RELEASE, button);
}
void TestUser::click(std::uint8_t button)
{
    press(button);
    release(button);
}
void TestUser::pressKey(std::uint8_t code)
{
    act(XCB_KEY_PRESS, code);
}
void TestUser::releaseKey(std::uint8_t code)
{
    act(XCB_KEY_RELEASE, code);
}
void TestUser::type(std::uint8_t code)
{
    pressKey(code);
    releaseKey(code);
}

void TestUser::act(std::uint8_t type, std::uint8_t detail, int x, int y)
{
    xcb_test_fake_input(
        m_connection.get(),
        type,
        detail,
        XCB_CURRENT_TIME,
        m_root,
        static_cast<std::int16_t>(x),
        static_cast<std::int16_t>(y),
        0);
    roundTrip(m_connection.get());
}

ColourWindow::ColourWindow(const std::string& display, int x, int y, int width, int height)
    : m_connection(connectTo(display))
{
    xcb_connection_t* const connection = m_connection.get();
    m_window = xcb_generate_id(connection);
    // The window manager shall neither move nor frame it.
    const std::array<std::uint32_t, 3> values{0x000000, 1, XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(
        connection,
        XCB_COPY_FROM_PARENT,
        m_window,
        rootOf(connection),
        static_cast<std::int16_t>(x),
        static_cast<std::int16_t>(y),
        static_cast<std::uint16_t>(width),
        static_cast<std::uint16_t>(height),
        0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
        values.data());
    xcb_map_window(connection, m_window);
    roundTrip(connection);
    m_thread = std::jthread([this](const std::stop_token& stop) { run(stop); });
}

ColourWindow::~ColourWindow()
{
    m_thread.request_stop();
    m_thread.join();
    xcb_destroy_window(m_connection.get(), m_window);
    roundTrip(m_connection.get());
}

void ColourWindow::setColour(std::uint32_t rgb)
{
    xcb_change_window_attributes(m_connection.get(), m_window, XCB_CW_BACK_PIXEL, &rgb);
    xcb_clear_area(m_connection.get(), 0, m_window, 0, 0, 0, 0);
    roundTrip(m_connection.get());
}

void ColourWindow::moveTo(int x, int y)
{
    const std::array<std::int32_t, 2> place{x, y};
    xcb_configure_window(
        m_connection.get(), m_window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place.data());
    roundTrip(m_connection.get());
}

void ColourWindow::run(const std::stop_token& stop)
{
    constexpr int kPollMs = 5;
    std::uint32_t colour = 0;
    while (!stop.stop_requested()) {
        while (xcb_generic_event_t* const event = xcb_poll_for_event(m_connection.get())) {
            if ((event->response_type & 0x7F) == XCB_BUTTON_PRESS) {
                colour ^= 0xFFFFFF;
                setColour(colour);
            }
            std::free(event);
        }
        pollfd waiting{
            .fd = xcb_get_file_descriptor(m_connection.get()), .events = POLLIN, .revents = 0};
        poll(&waiting, 1, kPollMs);
    }
}

TestMonitors::TestMonitors(const std::string& display, const std::vector<Rect>& rects)
    : m_connection(connectTo(display))
{
    xcb_connection_t* const connection = m_connection.get();
    // Asking makes the server speak the protocol that has monitors.
    std::free(xcb_randr_query_version_reply(
        connection, xcb_randr_query_version(connection, 1, 5), nullptr));
    std::vector<xcb_randr_output_t> outputs{onlyOutput(connection)};
    for (const Rect& rect : rects) {
        const std::string name = "M" + std::to_string(m_names.size());
        m_names.push_back(defineMonitor(connection, name, rect, std::exchange(outputs, {})));
    }
}

TestMonitors::~TestMonitors()
{
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        unplug(i);
    }
}

void TestMonitors::unplug(std::size_t index)
{
    xcb_randr_delete_monitor(m_connection.get(), rootOf(m_connection.get()), m_names[index]);
    roundTrip(m_connection.get());
}

void TestMonitors::resizeScreen(int width, int height)
{
    xcb_randr_set_screen_size(
        m_connection.get(),
        rootOf(m_connection.get()),
        static_cast<std::uint16_t>(width),
        static_cast<std::uint16_t>(height),
        100,
        100);
    roundTrip(m_connection.get());
}

PrivateDesktop& DesktopTest::stage()
{
    return *sharedStage;
}

void DesktopTest::endStage()
{
    sharedStage.reset();
}

} // namespace zento
