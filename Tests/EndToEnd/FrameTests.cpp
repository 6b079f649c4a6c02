#include "DesktopTest.h"
#include "ZentoCore/Error.h"

#include <gmock/gmock.h>
#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
#include <vector>

namespace zento {
namespace {

/// What a frame source delivered: the pixel at one place, and when.
class FrameList {
public:
    struct Frame {
        std::uint32_t pixel = 0; // R, G, B from the high byte down
        double time = 0;
    };

    FrameList(int x, int y)
        : m_x(x)
        , m_y(y)
    {
    }

    FrameSource::FrameHandler handler()
    {
        return [this](const CapturedFrame& frame) {
            const std::uint8_t* const bytes =
                frame.picture.data + m_y * frame.picture.stride + std::ptrdiff_t{4} * m_x;
            const std::lock_guard lock(m_mutex);
            m_frames.push_back(
                {static_cast<std::uint32_t>(bytes[2] << 16 | bytes[1] << 8 | bytes[0]),
                 frame.time});
            const bool refuses = m_refusals > 0;
            m_refusals -= refuses ? 1 : 0;
            return refuses ? FrameVerdict::Refused : FrameVerdict::Taken;
        };
    }

    void refuse(int count)
    {
        const std::lock_guard lock(m_mutex);
        m_refusals = count;
    }

    std::vector<Frame> frames() const
    {
        const std::lock_guard lock(m_mutex);
        return m_frames;
    }

    std::vector<std::uint32_t> pixels() const
    {
        std::vector<std::uint32_t> result;
        for (const Frame& frame : frames()) {
            result.push_back(frame.pixel);
        }
        return result;
    }

private:
    const int m_x;
    const int m_y;
    mutable std::mutex m_mutex;
    int m_refusals = 0;
    std::vector<Frame> m_frames;
};

void ignoreEnd(const std::optional<Error>&) {}

/// Cuts a monitor of the full height out of the screen. Its name.
xcb_atom_t
defineMonitor(xcb_connection_t* connection, const std::string& name, int x, int width, int height)
{
    xcb_intern_atom_reply_t* const atom = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr);
    xcb_randr_set_monitor_request_t head{.window = rootOf(connection)};
    xcb_randr_monitor_info_t monitor{
        .name = atom->atom,
        .x = static_cast<std::int16_t>(x),
        .width = static_cast<std::uint16_t>(width),
        .height = static_cast<std::uint16_t>(height),
        .width_in_millimeters = 100,
        .height_in_millimeters = 100};
    std::free(atom);
    // By hand: libxcb 1.15 closes the connection over the length its own function computes. It
    // wants two spare parts in front.
    const xcb_protocol_request_t request{
        .count = 2, .ext = &xcb_randr_id, .opcode = XCB_RANDR_SET_MONITOR, .isvoid = 1};
    std::array<iovec, 4> parts{{{}, {}, {&head, sizeof head}, {&monitor, sizeof monitor}}};
    xcb_send_request(connection, 0, parts.data() + 2, &request);
    roundTrip(connection);
    return monitor.name;
}

using testing::ElementsAre;

class FrameTest : public DesktopTest {
protected:
    std::unique_ptr<FrameSource> wholeScreen() const
    {
        return m_desktop->frameSource(
            {.displayID = m_desktop->displays().at(0).id,
             .pixelWidth = kWidth,
             .pixelHeight = kHeight});
    }
};

TEST_F(FrameTest, comesAtOnceAndThenOnlyWhenPixelsChange)
{
    ColourWindow window(display(), 100, 100, 50, 50);
    FrameList list(110, 110);
    const auto source = wholeScreen();
    source->start(list.handler(), ignoreEnd);
    ASSERT_TRUE(eventually([&] { return list.frames().size() == 1; }));

    window.setColour(0); // painted again as it was
    for (int x = 0; x < 200; ++x) {
        m_user.move(x, 50); // the pointer is no part of the picture
    }
    window.setColour(0x123456);
    ASSERT_TRUE(eventually([&] { return list.pixels().back() == 0x123456; }));
    source->stop();
    window.setColour(0xFF0000);
    EXPECT_THAT(list.pixels(), ElementsAre(0u, 0x123456u));
}

TEST_F(FrameTest, aRefusedPictureComesAgainUntilItIsTaken)
{
    ColourWindow window(display(), 100, 100, 50, 50);
    FrameList list(110, 110);
    const auto source = wholeScreen();
    source->start(list.handler(), ignoreEnd);
    ASSERT_TRUE(eventually([&] { return list.frames().size() == 1; }));
    list.refuse(2);
    window.setColour(0xABCDEF);
    ASSERT_TRUE(eventually([&] { return list.frames().size() == 4; }));
    source->stop();
    EXPECT_THAT(list.pixels(), ElementsAre(0u, 0xABCDEFu, 0xABCDEFu, 0xABCDEFu));
}

TEST_F(FrameTest, keepsToSixtyFramesASecond)
{
    ColourWindow window(display(), 100, 100, 50, 50);
    FrameList list(110, 110);
    const auto source = wholeScreen();
    source->start(list.handler(), ignoreEnd);
    std::uint32_t colour = 0;
    ASSERT_TRUE(eventually([&] {
        for (int i = 0; i < 10; ++i) {
            window.setColour(++colour);
        }
        return list.frames().size() >= 20;
    }));
    source->stop();
    const auto frames = list.frames();
    const double seconds = frames.back().time - frames.front().time;
    const auto intervals = static_cast<double>(frames.size() - 1);
    // A frame may come early on the beat after a late one.
    EXPECT_GE(seconds, 0.75 * intervals * FrameSource::kMinimumFrameInterval);
}

TEST_F(FrameTest, aMonitorIsRecordedWithoutItsNeighbour)
{
    const XcbConnection connection(xcb_connect(display().c_str(), nullptr));
    const xcb_window_t root = rootOf(connection.get());
    std::array<xcb_atom_t, 2> names{};
    for (const int i : {0, 1}) {
        const std::string name = i == 0 ? "LEFT" : "RIGHT";
        names[static_cast<std::size_t>(i)] =
            defineMonitor(connection.get(), name, i * kWidth / 2, kWidth / 2, kHeight);
    }
    roundTrip(connection.get());
    const auto displays = m_desktop->displays();
    const auto right = std::ranges::find(displays, std::string("RIGHT"), &DisplayInfo::name);
    ASSERT_NE(right, displays.end());
    EXPECT_EQ(right->bounds, (Rect{kWidth / 2.0, 0, kWidth / 2.0, kHeight}));
    EXPECT_EQ(displayID({400, 10}, displays), right->id);

    ColourWindow leftWindow(display(), 100, 100, 50, 50);
    ColourWindow rightWindow(display(), kWidth / 2 + 100, 100, 50, 50);
    FrameList list(110, 110);
    const auto source = m_desktop->frameSource(
        {.displayID = right->id, .pixelWidth = kWidth / 2, .pixelHeight = kHeight});
    source->start(list.handler(), ignoreEnd);
    ASSERT_TRUE(eventually([&] { return list.frames().size() == 1; }));
    leftWindow.setColour(0x00FF00);
    rightWindow.setColour(0x0000FF);
    ASSERT_TRUE(eventually([&] { return list.frames().size() == 2; }));
    leftWindow.setColour(0xFF0000);
    rightWindow.setColour(0x00FFFF);
    ASSERT_TRUE(eventually([&] { return list.pixels().back() == 0x00FFFF; }));
    source->stop();
    EXPECT_THAT(list.pixels(), ElementsAre(0u, 0x0000FFu, 0x00FFFFu));
    for (const xcb_atom_t name : names) {
        xcb_randr_delete_monitor(connection.get(), root, name);
    }
    roundTrip(connection.get());
}

TEST_F(FrameTest, whatLiesOutsideTheScreenIsRefused)
{
    const auto id = m_desktop->displays().at(0).id;
    EXPECT_THROW(
        (void)m_desktop->frameSource(
            {.displayID = id,
             .sourceRect = Rect{600, 0, 100, 100},
             .pixelWidth = 100,
             .pixelHeight = 100}),
        Error);
    EXPECT_THROW(
        (void)m_desktop->frameSource({.displayID = id + 1, .pixelWidth = 10, .pixelHeight = 10}),
        Error);
}

} // namespace
} // namespace zento
