#include "DesktopTest.h"
#include "ZentoCapture/KeyLabel.h"
#include "ZentoCapture/MonotonicClock.h"

#include <gmock/gmock.h>
#include <xcb/xinput.h>

#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace zento {
namespace {

// Key codes of the server: those of the kernel plus 8.
constexpr std::uint8_t kKeyA = 38;
constexpr std::uint8_t kKey5 = 14;
constexpr std::uint8_t kKeyShift = 50;
constexpr std::uint8_t kKeyControl = 37;
constexpr std::uint8_t kKeyAlt = 64;
constexpr std::uint8_t kKeySuper = 133;
constexpr std::uint8_t kKeyF5 = 71;
constexpr std::uint8_t kKeypad1 = 87;
constexpr std::uint8_t kKeyLeft = 113;

class InputTest : public DesktopTest {
protected:
    InputTest()
        : m_source(m_desktop->inputSource())
    {
        m_source->start([this](const RawInput& input) {
            const std::lock_guard lock(m_mutex);
            m_inputs.push_back(input);
        });
    }

    /// All that was heard until now; the source hears no more.
    std::vector<RawInput> heard()
    {
        m_source->stop();
        return m_inputs;
    }

    /// As a recording's poll does, this keeps the server talking.
    bool hears(std::size_t count)
    {
        return eventually([&] {
            m_source->pointerPosition();
            const std::lock_guard lock(m_mutex);
            return m_inputs.size() >= count;
        });
    }

    std::unique_ptr<InputSource> m_source;

private:
    std::mutex m_mutex;
    std::vector<RawInput> m_inputs;
};

std::string text(const RawInput& input)
{
    switch (input.type) {
    case RawInputType::LeftDown:
        return "left down";
    case RawInputType::LeftUp:
        return "left up";
    case RawInputType::RightDown:
        return "right down";
    case RawInputType::KeyDown:
        return KeyLabel::label(input.keyCode, input.flags);
    case RawInputType::Scroll:
        return "scroll " + std::to_string(static_cast<int>(input.scroll.x)) + " "
               + std::to_string(static_cast<int>(input.scroll.y));
    }
    return {};
}

std::vector<std::string> texts(const std::vector<RawInput>& inputs)
{
    std::vector<std::string> result;
    result.reserve(inputs.size());
    for (const RawInput& input : inputs) {
        result.push_back(text(input));
    }
    return result;
}

using testing::ElementsAre;

TEST_F(InputTest, buttonsAreThoseOfTheLog)
{
    for (const int button : {1, 2, 3, 8}) {
        m_user.click(static_cast<std::uint8_t>(button));
    }
    EXPECT_THAT(texts(heard()), ElementsAre("left down", "left up", "right down"));
}

TEST_F(InputTest, theWheelTurnsUpAndLeftPositively)
{
    for (const int button : {4, 5, 6, 7}) {
        m_user.click(static_cast<std::uint8_t>(button));
    }
    EXPECT_THAT(
        texts(heard()), ElementsAre("scroll 0 10", "scroll 0 -10", "scroll 10 0", "scroll -10 0"));
}

TEST_F(InputTest, keysAreNamedWithTheirModifiers)
{
    m_user.type(kKeyA);
    for (const std::uint8_t modifier : {kKeyShift, kKeyControl, kKeyAlt, kKeySuper}) {
        m_user.pressKey(modifier); // no record of its own
        m_user.type(kKeyA);
    }
    for (const std::uint8_t modifier : {kKeyShift, kKeyControl, kKeyAlt, kKeySuper}) {
        m_user.releaseKey(modifier);
    }
    for (const std::uint8_t key : {kKey5, kKeyF5, kKeyLeft, kKeypad1}) {
        m_user.type(key);
    }
    EXPECT_THAT(
        texts(heard()), ElementsAre("a", "⇧A", "⌃⇧A", "⌃⌥⇧A", "⌃⌥⇧⌘A", "5", "F5", "←", "·"));
}

TEST_F(InputTest, aHeldKeyIsLoggedForEachRepeat)
{
    m_user.pressKey(kKeyA);
    ASSERT_TRUE(hears(4));
    m_user.releaseKey(kKeyA);
    const auto inputs = heard();
    for (std::size_t i = 1; i < inputs.size(); ++i) {
        EXPECT_EQ(text(inputs[i]), "a");
        EXPECT_GT(inputs[i].time, inputs[i - 1].time);
    }
}

TEST_F(InputTest, aClickLiesWhereItHappenedHoweverFastThePointerGoesOn)
{
    std::vector<Vec2> places;
    std::vector<double> times;
    for (int i = 0; i < 50; ++i) {
        places.push_back({10.0 + 12 * i, 200.0 - 3 * i});
        m_user.move(10 + 12 * i, 200 - 3 * i);
        times.push_back(monotonicSeconds());
        m_user.press(1);
        m_user.move(600, 300);
        m_user.release(1);
    }
    const double end = monotonicSeconds();
    std::vector<RawInput> clicks;
    for (const RawInput& input : heard()) {
        if (input.type == RawInputType::LeftDown) {
            clicks.push_back(input);
        }
    }
    ASSERT_EQ(clicks.size(), places.size());
    times.push_back(end);
    for (std::size_t i = 0; i < clicks.size(); ++i) {
        EXPECT_EQ(clicks[i].point, places[i]);
        // The server counts whole milliseconds of the same clock.
        EXPECT_GE(clicks[i].time, times[i] - 0.0011);
        EXPECT_LE(clicks[i].time, times[i + 1]);
    }
}

/// A program that takes mouse and keyboard for itself.
void grabByCore(xcb_connection_t* connection, xcb_grab_mode_t mode)
{
    const xcb_window_t root = rootOf(connection);
    xcb_grab_pointer(
        connection,
        0,
        root,
        XCB_EVENT_MASK_BUTTON_PRESS,
        static_cast<std::uint8_t>(mode),
        XCB_GRAB_MODE_ASYNC,
        XCB_NONE,
        XCB_NONE,
        XCB_CURRENT_TIME);
    xcb_grab_keyboard(
        connection,
        0,
        root,
        XCB_CURRENT_TIME,
        XCB_GRAB_MODE_ASYNC,
        static_cast<std::uint8_t>(mode));
}

/// The same by the extension, which can keep raw events from all others.
void grabByXInput(xcb_connection_t* connection)
{
    std::free(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 0), nullptr));
    const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS
                               | XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS
                               | XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    for (const std::uint16_t device :
         {std::uint16_t{2}, std::uint16_t{3}}) { // the master pointer and keyboard
        std::free(xcb_input_xi_grab_device_reply(
            connection,
            xcb_input_xi_grab_device(
                connection,
                rootOf(connection),
                XCB_CURRENT_TIME,
                XCB_NONE,
                device,
                XCB_GRAB_MODE_ASYNC,
                XCB_GRAB_MODE_ASYNC,
                0,
                1,
                &mask),
            nullptr));
    }
}

TEST_F(InputTest, grabsOfOtherProgramsHideNothing)
{
    struct Case {
        const char* name;
        void (*grab)(xcb_connection_t*);
    };
    const std::vector<Case> cases{
        {"core", [](xcb_connection_t* to) { grabByCore(to, XCB_GRAB_MODE_ASYNC); }},
        {"core, frozen", [](xcb_connection_t* to) { grabByCore(to, XCB_GRAB_MODE_SYNC); }},
        {"XInput", grabByXInput},
    };
    std::size_t count = 0;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const XcbConnection other(xcb_connect(display().c_str(), nullptr));
        row.grab(other.get());
        roundTrip(other.get());
        m_user.click(1);
        m_user.click(4);
        m_user.type(kKeyA);
        // A frozen device goes on when its holder lets it.
        xcb_allow_events(other.get(), XCB_ALLOW_ASYNC_BOTH, XCB_CURRENT_TIME);
        roundTrip(other.get());
        EXPECT_TRUE(hears(count += 4));
    }
    auto inputs = texts(heard());
    ASSERT_EQ(inputs.size(), count);
    for (auto group = inputs.begin(); group != inputs.end(); group += 4) {
        EXPECT_THAT(
            std::vector(group, group + 4),
            testing::UnorderedElementsAre("left down", "left up", "scroll 0 10", "a"));
    }
}

TEST_F(InputTest, thePointerIsRead)
{
    m_user.move(123, 45);
    EXPECT_EQ(m_source->pointerPosition(), (Vec2{123, 45}));
}

TEST(InputWithoutServer, hasNoDisplay)
{
    EXPECT_THROW((void)openDesktop(":987"), Error);
}

} // namespace
} // namespace zento
