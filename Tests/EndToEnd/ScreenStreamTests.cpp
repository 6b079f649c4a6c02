#include "DesktopTest.h"
#include "WaylandStage/FakeScreen.h"
#include "WaylandStage/WaylandStage.h"
#include "ZentoCapture/Backends/PipeWireScreenStream.h"

#include <gtest/gtest.h>
#include <spa/param/video/raw.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace zento {
namespace {

using test::FakeScreen;

/// A program that looks at a stream.
class Onlooker {
public:
    explicit Onlooker(std::uint32_t node)
        : m_stream(
              m_loop,
              node,
              {.update = [this](const ScreenUpdate& update) { take(update); },
               .gone = [](const std::string&) {}})
    {
    }

    std::size_t updates() const
    {
        const std::lock_guard lock(m_mutex);
        return m_updates;
    }
    std::vector<std::uint32_t> newest() const
    {
        const std::lock_guard lock(m_mutex);
        return m_newest;
    }

private:
    void take(const ScreenUpdate& update)
    {
        const std::lock_guard lock(m_mutex);
        ++m_updates;
        m_newest.clear();
        if (update.picture) {
            const ForeignPicture& picture = *update.picture;
            m_newest.resize(static_cast<std::size_t>(picture.width * picture.height));
            copyAsBgrx(picture, {0, 0, picture.width, picture.height}, m_newest.data());
        }
    }

    mutable std::mutex m_mutex;
    std::size_t m_updates = 0;
    std::vector<std::uint32_t> m_newest; // empty: no picture
    PipeWireLoop m_loop{"test.onlooker"};
    PipeWireScreenStream m_stream;
};

constexpr int kWidth = 16;
constexpr int kHeight = 8;
constexpr auto kPixels = static_cast<std::size_t>(kWidth * kHeight);
constexpr std::uint32_t kColour = 0xFF0A141EU; // red 10, green 20, blue 30

using Memory = FakeScreen::Memory;

std::vector<std::uint8_t> filled(const std::vector<std::uint8_t>& pixel)
{
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < kPixels; ++i)
        bytes.insert(bytes.end(), pixel.begin(), pixel.end());
    return bytes;
}

/// Red 10, green 20 and blue 30 of 255 as parts of 1023, at their lowest bits.
std::vector<std::uint8_t> deep(unsigned red, unsigned green, unsigned blue)
{
    const std::uint32_t word = 40U << red | 80U << green | 120U << blue;
    return {
        static_cast<std::uint8_t>(word),
        static_cast<std::uint8_t>(word >> 8U),
        static_cast<std::uint8_t>(word >> 16U),
        static_cast<std::uint8_t>(word >> 24U)};
}

TEST(ScreenStream, readsEveryFormAndMemoryThatADesktopOffers)
{
    const test::WaylandStage stage;
    struct Case {
        const char* name;
        std::uint32_t format;
        std::vector<std::uint8_t> pixel;
        Memory memory = Memory::Ordinary;
    };
    for (const Case& each : std::vector<Case>{
             {"BGRx", SPA_VIDEO_FORMAT_BGRx, {30, 20, 10, 0}},
             {"BGRA", SPA_VIDEO_FORMAT_BGRA, {30, 20, 10, 255}},
             {"RGBx", SPA_VIDEO_FORMAT_RGBx, {10, 20, 30, 0}},
             {"RGBA", SPA_VIDEO_FORMAT_RGBA, {10, 20, 30, 255}},
             {"xRGB", SPA_VIDEO_FORMAT_xRGB, {0, 10, 20, 30}},
             {"ARGB", SPA_VIDEO_FORMAT_ARGB, {255, 10, 20, 30}},
             {"xBGR", SPA_VIDEO_FORMAT_xBGR, {0, 30, 20, 10}},
             {"ABGR", SPA_VIDEO_FORMAT_ABGR, {255, 30, 20, 10}},
             {"BGR", SPA_VIDEO_FORMAT_BGR, {30, 20, 10}},
             {"RGB", SPA_VIDEO_FORMAT_RGB, {10, 20, 30}},
             {"xRGB 210", SPA_VIDEO_FORMAT_xRGB_210LE, deep(20, 10, 0)},
             {"ABGR 210", SPA_VIDEO_FORMAT_ABGR_210LE, deep(0, 10, 20)},
             {"RGBA 102", SPA_VIDEO_FORMAT_RGBA_102LE, deep(22, 12, 2)},
             {"BGRx 102", SPA_VIDEO_FORMAT_BGRx_102LE, deep(2, 12, 22)},
             {"BGRx of a card", SPA_VIDEO_FORMAT_BGRx, {30, 20, 10, 0}, Memory::OfCard},
             {"RGBA of a card", SPA_VIDEO_FORMAT_RGBA, {10, 20, 30, 255}, Memory::OfCard}}) {
        const int bytes = static_cast<int>(each.pixel.size());
        FakeScreen screen({each.format, kWidth, kHeight, bytes, each.memory});
        const Onlooker onlooker(screen.node());
        const auto picture = filled(each.pixel);
        const auto size = static_cast<std::uint32_t>(picture.size());
        ASSERT_TRUE(eventually([&] {
            return screen.show(picture, {.size = size, .stride = kWidth * bytes});
        })) << each.name;
        ASSERT_TRUE(eventually([&] { return onlooker.updates() > 0; })) << each.name;
        EXPECT_EQ(onlooker.newest(), std::vector<std::uint32_t>(kPixels, kColour)) << each.name;
    }
}

TEST(ScreenStream, aBufferThatIsWrongAboutItselfIsNoPicture)
{
    const test::WaylandStage stage;
    for (const Memory memory : {Memory::Ordinary, Memory::OfCard}) {
        FakeScreen screen({SPA_VIDEO_FORMAT_BGRx, kWidth, kHeight, 4, memory});
        const Onlooker onlooker(screen.node());
        constexpr std::int32_t kStride = kWidth * 4;
        constexpr std::uint32_t kSize = kStride * kHeight;
        const auto picture = filled({30, 20, 10, 0});
        struct Case {
            const char* name;
            FakeScreen::Chunk chunk;
            bool isPicture;
        };
        for (const Case& each : std::vector<Case>{
                 {"right", {0, kSize, kStride}, true},
                 {"empty", {0, 0, kStride}, false},
                 {"past its end", {kSize, kSize, kStride}, false},
                 {"beyond its end", {8, kSize, kStride}, false},
                 {"far away", {0xFFFFFFF0U, kSize, kStride}, false},
                 {"rows that overlap", {0, kSize, 4}, false},
                 {"rows too far apart", {0, kSize, 2 * kStride}, false},
                 {"rows without a distance", {0, kSize, 0}, true},
                 {"from the bottom up", {0, kSize, -kStride}, true},
                 {"right again", {0, kSize, kStride}, true}}) {
            const std::size_t before = onlooker.updates();
            ASSERT_TRUE(eventually([&] { return screen.show(picture, each.chunk); })) << each.name;
            ASSERT_TRUE(eventually([&] { return onlooker.updates() > before; })) << each.name;
            EXPECT_EQ(!onlooker.newest().empty(), each.isPicture) << each.name;
        }
    }
}

} // namespace
} // namespace zento
