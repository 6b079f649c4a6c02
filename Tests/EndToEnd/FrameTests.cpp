#include "DesktopTest.h"
#include "ZentoCore/Error.h"

#include <gmock/gmock.h>

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
    constexpr double kHalf = kWidth / 2.0;
    // Told in another order than they stand.
    const TestMonitors two(display(), {{kHalf, 0, kHalf, kHeight}, {0, 0, kHalf, kHeight}});
    const auto displays = m_desktop->displays();
    ASSERT_EQ(displays.size(), 2U);
    const DisplayInfo* const right = &displays[1];
    EXPECT_EQ(right->name, "M0");
    EXPECT_EQ(right->bounds, (Rect{kHalf, 0, kHalf, kHeight}));
    m_user.move(400, 10);
    EXPECT_EQ(displayIDUnderCursor(*m_desktop, displays), right->id);
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
