#include "TestSupport/TemporaryFolder.h"
#include "ZentoCapture/Backends/CardMemory.h"
#include "ZentoCapture/Backends/DeviceKeys.h"
#include "ZentoCapture/Backends/PortalInputSource.h"
#include "ZentoCapture/Backends/PortalScreen.h"
#include "ZentoCapture/Backends/RestoreTokens.h"
#include "ZentoCapture/Backends/ScreenStreamBuffer.h"
#include "ZentoCapture/Backends/StreamFrames.h"
#include "ZentoCapture/KeyLabel.h"
#include "ZentoCapture/PointerTrack.h"
#include "ZentoCore/FileDescriptor.h"
#include "ZentoCore/FileIO.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace zento {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000U;
constexpr std::uint32_t kBlue = 0xFF0000FFU;

/// A picture in memory of its own, one colour a pixel.
struct Painted {
    Painted(int width, int height, std::uint32_t argb)
        : pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), argb)
        , picture{
              .data = reinterpret_cast<const std::uint8_t*>(pixels.data()), // NOLINT: bytes
              .stride = std::ptrdiff_t{width} * 4,
              .width = width,
              .height = height}
    {
    }

    std::vector<std::uint32_t> pixels;
    ForeignPicture picture;
};

ScreenUpdate update(const Painted& painted, double time, std::vector<PixelRect> damage = {})
{
    return {.time = time, .picture = painted.picture, .damage = std::move(damage)};
}

struct Seen {
    double time = 0;
    std::uint32_t first = 0; // pixel
    std::uint32_t last = 0;
};

/// A recording's end of the frames.
struct Taker {
    std::vector<Seen> seen;
    FrameVerdict verdict = FrameVerdict::Taken;

    FrameSource::FrameHandler handler()
    {
        return [this](const CapturedFrame& frame) {
            const BgraView& view = frame.picture;
            Seen one{.time = frame.time};
            std::memcpy(&one.first, view.data, 4);
            std::memcpy(
                &one.last, view.data + (view.height - 1) * view.stride + (view.width - 1) * 4, 4);
            seen.push_back(one);
            return verdict;
        };
    }
};

TEST(StreamFrames, aStillScreenHasItsOnePictureOnceTheRecordingBegins)
{
    StreamFrames frames;
    Taker taker;
    frames.take(update(Painted(8, 6, kRed), 1), 1);
    EXPECT_EQ(frames.size(), (Vec2{8, 6}));
    frames.begin({0, 0, 8, 6}, taker.handler(), 5);
    frames.tick(5);
    ASSERT_EQ(taker.seen.size(), 1U);
    EXPECT_EQ(taker.seen[0].first, kRed);
    EXPECT_EQ(taker.seen[0].time, 5) << "what it shows is what there is now";
    EXPECT_FALSE(frames.due());
}

TEST(StreamFrames, keepToTheirRateAndTheNewestPictureWins)
{
    StreamFrames frames;
    Taker taker;
    frames.begin({0, 0, 4, 4}, taker.handler(), 0);
    for (int i = 0; i < 240; ++i) { // a second at four times the rate
        const double now = i / 240.0;
        frames.take(update(Painted(4, 4, 0xFF000000U + static_cast<unsigned>(i)), now), now);
    }
    EXPECT_LE(taker.seen.size(), 61U);
    EXPECT_GE(taker.seen.size(), 58U);
    ASSERT_TRUE(frames.due());
    frames.tick(*frames.due());
    EXPECT_EQ(taker.seen.back().first, 0xFF0000EFU) << "the last one is shown, too";
    EXPECT_TRUE(std::ranges::is_sorted(taker.seen, {}, &Seen::time));
}

TEST(StreamFrames, aRefusedPictureComesAgainAndAnEqualOneDoesNot)
{
    StreamFrames frames;
    Taker taker;
    taker.verdict = FrameVerdict::Refused;
    frames.begin({0, 0, 4, 4}, taker.handler(), 0);
    frames.take(update(Painted(4, 4, kRed), 0.5), 0.5);
    EXPECT_EQ(taker.seen.size(), 1U);
    taker.verdict = FrameVerdict::Taken;
    ASSERT_TRUE(frames.due());
    frames.tick(*frames.due());
    EXPECT_EQ(taker.seen.size(), 2U);
    frames.take(update(Painted(4, 4, kRed), 1), 1);
    EXPECT_EQ(taker.seen.size(), 2U) << "repainted with the same pixels";
    EXPECT_FALSE(frames.due());
}

TEST(StreamFrames, ofAPartLeaveOutWhatChangesElsewhere)
{
    StreamFrames frames;
    Taker taker;
    frames.take(update(Painted(100, 100, kRed), 0), 0);
    frames.begin({50, 50, 20, 20}, taker.handler(), 1);
    frames.tick(1);
    struct Case {
        const char* name;
        PixelRect damage;
        bool isShown;
    };
    double now = 2;
    std::uint32_t colour = kBlue;
    for (const Case& each :
         {Case{"above", {0, 0, 100, 50}, false},
          Case{"touching", {0, 0, 51, 51}, true},
          Case{"all", {0, 0, 100, 100}, true}}) {
        const std::size_t before = taker.seen.size();
        frames.take(update(Painted(100, 100, ++colour), now, {each.damage}), now);
        EXPECT_EQ(taker.seen.size() > before, each.isShown) << each.name;
        now += 1;
    }
}

TEST(StreamFrames, aScreenOfAnotherSizeIsScaledIntoTheFrameAndThePointerWithIt)
{
    StreamFrames frames;
    Taker taker;
    frames.take(update(Painted(100, 50, kRed), 0), 0);
    frames.begin({0, 0, 100, 50}, taker.handler(), 1);
    frames.tick(1);
    EXPECT_EQ(frames.asRecorded({40, 20}), (Vec2{40, 20}));
    frames.take(update(Painted(50, 50, kBlue), 2), 2);
    ASSERT_EQ(taker.seen.size(), 2U);
    EXPECT_EQ(taker.seen[1].first, kBlue);
    EXPECT_EQ(taker.seen[1].last & 0xFFFFFFU, 0U) << "black where it does not reach";
    frames.take(update(Painted(200, 100, kRed), 3), 3);
    ASSERT_EQ(taker.seen.size(), 3U);
    EXPECT_EQ(taker.seen[2].last, kRed);
    EXPECT_EQ(frames.asRecorded({40, 20}), (Vec2{20, 10}));
}

/// One buffer as a desktop fills it.
class Buffer {
public:
    explicit Buffer(std::vector<std::uint8_t> itsBytes)
        : bytes(std::move(itsBytes))
    {
        chunk.size = static_cast<std::uint32_t>(bytes.size());
        data.type = SPA_DATA_MemPtr;
        data.data = bytes.data();
        data.maxsize = chunk.size;
        data.chunk = &chunk;
        metas[0] = {SPA_META_Header, sizeof(header), &header};
        metas[1] = {SPA_META_Cursor, sizeof(cursor), &cursor};
        metas[2] = {SPA_META_VideoCrop, sizeof(crop), &crop};
        metas[3] = {SPA_META_VideoDamage, sizeof(damage), damage.data()};
        buffer = {
            .n_metas = static_cast<std::uint32_t>(metas.size()),
            .n_datas = 1,
            .metas = metas.data(),
            .datas = &data};
    }

    std::vector<std::uint8_t> bytes;
    spa_chunk chunk{};
    spa_data data{};
    spa_meta_header header{};
    spa_meta_cursor cursor{};
    spa_meta_region crop{};
    std::array<spa_meta_region, 4> damage{};
    std::array<spa_meta, 4> metas{};
    spa_buffer buffer{};
};

/// A pixel's three colours from the highest bits down, with `free` bits below them.
std::vector<std::uint8_t>
tenBits(std::uint32_t high, std::uint32_t middle, std::uint32_t low, unsigned free = 0)
{
    const std::uint32_t word = (high << 20U | middle << 10U | low) << free;
    return {
        static_cast<std::uint8_t>(word),
        static_cast<std::uint8_t>(word >> 8U),
        static_cast<std::uint8_t>(word >> 16U),
        static_cast<std::uint8_t>(word >> 24U)};
}

TEST(ScreenUpdate, everyOrderOfColoursBecomesTheSame)
{
    struct Case {
        const char* name;
        PixelOrder order;
        std::vector<std::uint8_t> pixel; // of blue 1, green 2, red 3
    };
    for (const Case& each : std::vector<Case>{
             {"BGRx", {4, 0, 1, 2}, {1, 2, 3, 255}},
             {"RGBx", {4, 2, 1, 0}, {3, 2, 1, 9}},
             {"xRGB", {4, 3, 2, 1}, {9, 3, 2, 1}},
             {"xBGR", {4, 1, 2, 3}, {9, 1, 2, 3}},
             {"BGR", {3, 0, 1, 2}, {1, 2, 3}},
             {"RGB", {3, 2, 1, 0}, {3, 2, 1}},
             {"xRGB of 10 bits", {4, 0, 10, 20, 10}, tenBits(12, 8, 4)},
             {"xBGR of 10 bits", {4, 20, 10, 0, 10}, tenBits(4, 8, 12)},
             {"RGBx of 10 bits", {4, 2, 12, 22, 10}, tenBits(12, 8, 4, 2)},
             {"BGRx of 10 bits", {4, 22, 12, 2, 10}, tenBits(4, 8, 12, 2)}}) {
        std::vector<std::uint8_t> bytes;
        for (int i = 0; i < 6; ++i)
            bytes.insert(bytes.end(), each.pixel.begin(), each.pixel.end());
        const Buffer buffer(bytes);
        const auto result =
            screenUpdate({.width = 3, .height = 2, .order = each.order}, buffer.buffer, {}, 1);
        ASSERT_TRUE(result.picture) << each.name;
        std::array<std::uint32_t, 2> pixels{};
        copyAsBgrx(*result.picture, {1, 1, 2, 1}, pixels.data());
        EXPECT_THAT(pixels, testing::Each(0xFF030201U)) << each.name;
    }
}

TEST(ScreenUpdate, tellsWhatTheBufferHolds)
{
    const ScreenForm form{.width = 4, .height = 4};
    const std::vector<std::uint8_t> bytes(64, 7);
    Buffer whole(bytes);
    whole.header.pts = 99'990'000'000;
    whole.cursor.id = 1;
    whole.cursor.position = {3, -2};
    const auto all = screenUpdate(form, whole.buffer, {}, 100);
    EXPECT_DOUBLE_EQ(all.time, 99.99);
    EXPECT_EQ(all.pointer, (Vec2{3, -2}));
    ASSERT_TRUE(all.picture);
    EXPECT_EQ(all.picture->width, 4);

    Buffer pointerOnly(bytes);
    pointerOnly.chunk.size = 0;
    pointerOnly.cursor.id = 1;
    EXPECT_FALSE(screenUpdate(form, pointerOnly.buffer, {}, 1).picture);
    EXPECT_TRUE(screenUpdate(form, pointerOnly.buffer, {}, 1).pointer);

    Buffer torn(bytes);
    torn.data.maxsize = 60;
    EXPECT_FALSE(screenUpdate(form, torn.buffer, {}, 1).picture) << "less than a picture";
    Buffer damaged(bytes);
    damaged.chunk.flags = SPA_CHUNK_FLAG_CORRUPTED;
    EXPECT_FALSE(screenUpdate(form, damaged.buffer, {}, 1).picture);

    Buffer hidden(bytes);
    hidden.header.pts = 5'000'000'000;
    const auto quiet = screenUpdate(form, hidden.buffer, {}, 100);
    EXPECT_FALSE(quiet.pointer);
    EXPECT_EQ(quiet.time, 100) << "a stamp of another clock";

    Buffer window(bytes);
    window.crop.region = {{1, 1}, {2, 3}};
    window.damage[0].region = {{1, 2}, {1, 1}};
    window.cursor.id = 1;
    window.cursor.position = {3, 3};
    const auto cut = screenUpdate(form, window.buffer, {}, 1);
    ASSERT_TRUE(cut.picture);
    EXPECT_EQ(cut.picture->width, 2);
    EXPECT_EQ(cut.picture->height, 3);
    EXPECT_EQ(cut.picture->data, window.bytes.data() + 20);
    EXPECT_THAT(cut.damage, testing::ElementsAre(PixelRect{0, 1, 1, 1}));
    EXPECT_EQ(cut.pointer, (Vec2{2, 2}));
    EXPECT_EQ(cut.stream, (Vec2{4, 4}));

    Buffer mapped(bytes);
    mapped.data.data = nullptr;
    EXPECT_FALSE(screenUpdate(form, mapped.buffer, {}, 1).picture);
    EXPECT_TRUE(screenUpdate(form, mapped.buffer, bytes, 1).picture);
}

TEST(ScreenUpdate, aBufferThatIsWrongAboutItselfShowsNothingOutsideItsMemory)
{
    constexpr int kWidth = 4;
    constexpr int kHeight = 4;
    const ScreenForm form{.width = kWidth, .height = kHeight};
    const std::vector<std::int64_t> values{
        0, 1, -1, 15, 16, -16, 17, 64, -64, 65, 1000, INT32_MAX, INT32_MIN, UINT32_MAX};
    int shown = 0;
    for (const std::int64_t offset : values) {
        for (const std::int64_t stride : values) {
            for (const std::int64_t side : values) {
                Buffer buffer(std::vector<std::uint8_t>(80, 7));
                buffer.chunk.offset = static_cast<std::uint32_t>(offset);
                buffer.chunk.stride = static_cast<std::int32_t>(stride);
                const auto place = static_cast<std::int32_t>(side);
                const auto size = static_cast<std::uint32_t>(side);
                buffer.crop.region = {{place, -place / 2}, {size, size}};
                buffer.damage[0].region = buffer.crop.region;
                const auto update = screenUpdate(form, buffer.buffer, {}, 1);
                if (!update.picture)
                    continue;
                ++shown;
                const ForeignPicture& picture = *update.picture;
                for (const int y : {0, picture.height - 1}) {
                    const std::uint8_t* const row = picture.data + y * picture.stride;
                    ASSERT_GE(row, buffer.bytes.data()) << offset << ' ' << stride << ' ' << side;
                    ASSERT_LE(row + picture.width * 4, buffer.bytes.data() + buffer.bytes.size())
                        << offset << ' ' << stride << ' ' << side;
                }
            }
        }
    }
    EXPECT_GT(shown, 0);
    Buffer upsideDown(std::vector<std::uint8_t>(64));
    upsideDown.bytes[48] = 9;
    upsideDown.data.data = upsideDown.bytes.data();
    upsideDown.chunk.stride = -16;
    const auto turned = screenUpdate(form, upsideDown.buffer, {}, 1);
    ASSERT_TRUE(turned.picture);
    EXPECT_EQ(*turned.picture->data, 9);
}

TEST(CardMemory, isAsMuchOfTheFileAsThereIs)
{
    const FileDescriptor file(::memfd_create("card", MFD_CLOEXEC));
    std::vector<std::uint8_t> content(100);
    std::iota(content.begin(), content.end(), std::uint8_t{0});
    ASSERT_EQ(::write(file.get(), content.data(), content.size()), 100);
    struct Case {
        const char* name;
        std::size_t offset;
        std::size_t bytes;
        std::size_t expected;
    };
    for (const Case& each :
         {Case{"a part", 10, 20, 20},
          Case{"its rest", 10, 0, 90},
          Case{"more than there is", 10, 1000, 90},
          Case{"past its end", 100, 10, 0}}) {
        const CardMemory memory(file.get(), each.offset, each.bytes);
        const CardMemory::Reading reading(memory);
        ASSERT_EQ(memory.bytes().size(), each.expected) << each.name;
        if (each.expected > 0) {
            EXPECT_EQ(memory.bytes().back(), each.offset + each.expected - 1) << each.name;
        }
    }
    EXPECT_TRUE(CardMemory(-1, 0, 100).bytes().empty());
}

TEST(PointerTrack, isOnItsWayBetweenSamplesAndLeavesARestAtOnce)
{
    PointerTrack track;
    EXPECT_FALSE(track.at(1));
    track.add(1, {100, 100});
    track.add(3, {200, 100}); // after a rest
    track.add(3.02, {240, 100});
    struct Case {
        double time;
        double x;
    };
    for (const Case& each : std::vector<Case>{
             {0.5, 100}, {1, 100}, {2.99, 100}, {3, 200}, {3.01, 220}, {3.02, 240}, {9, 240}})
        EXPECT_NEAR(track.at(each.time)->x, each.x, 1e-6) << each.time;
    track.add(2, {0, 0}); // it comes late
    EXPECT_EQ(track.newest(), (Vec2{0, 0}));
    EXPECT_NEAR(track.at(3.01)->x, 220, 1e-6) << "what is known stays";
}

TEST(StreamScale, isThatOfTheDesktop)
{
    struct Case {
        double pixels;
        double points;
        double scale;
    };
    for (const Case& each : std::vector<Case>{
             {1920, 1920, 1},
             {1920, 1280, 1.5},
             {1280, 853, 1.5},
             {1366, 911, 1.5},
             {2560, 2048, 1.25},
             {3840, 2194, 1.75},
             {3840, 1920, 2},
             {100, 0, 1}})
        EXPECT_DOUBLE_EQ(streamScale(each.pixels, each.points), each.scale) << each.points;
}

TEST(DeviceKeys, areLabelledAsThoseOfTheServer)
{
    using Press = DeviceKeys::Press;
    DeviceKeys keys;
    const auto label = [&](std::uint32_t code) {
        const auto result = keys.handle(code, Press::Down);
        return result.isRecord ? KeyLabel::label(result.keyCode, result.flags) : "none";
    };
    EXPECT_EQ(label(KEY_A), "a");
    EXPECT_EQ(label(KEY_LEFTSHIFT), "none");
    EXPECT_EQ(label(KEY_A), "⇧A");
    EXPECT_EQ(label(KEY_RIGHTSHIFT), "none");
    keys.handle(KEY_LEFTSHIFT, Press::Up);
    EXPECT_EQ(label(KEY_A), "⇧A") << "the other one is still held";
    keys.handle(KEY_RIGHTSHIFT, Press::Up);
    keys.handle(KEY_LEFTCTRL, Press::Down);
    EXPECT_EQ(label(KEY_C), "⌃C");
    EXPECT_FALSE(keys.handle(KEY_C, Press::Up).isRecord);
    EXPECT_EQ(label(KEY_KP5), "⌃·");
    keys.handle(KEY_LEFTCTRL, Press::Up);
    EXPECT_EQ(label(KEY_ENTER), "⏎");
}

TEST(RestoreTokens, areKeptForEachChoiceAndNobodyElseReadsThem)
{
    const test::TemporaryFolder folder;
    const auto file = folder / "state/screens";
    const RestoreTokens tokens(file);
    EXPECT_FALSE(tokens.find("display"));
    tokens.keep("display", "one");
    tokens.keep("window", "two");
    tokens.keep("display", "three");
    EXPECT_EQ(RestoreTokens(file).find("display"), "three");
    EXPECT_EQ(tokens.find("window"), "two");
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(file).permissions(), perms::owner_read | perms::owner_write);
    tokens.keep("display", {});
    EXPECT_FALSE(tokens.find("display"));
    writeFile(file, "nonsense\n\twithout a name\nwindow\t");
    EXPECT_FALSE(tokens.find("window"));
    EXPECT_NO_THROW(RestoreTokens("/proc/nowhere/screens").keep("display", "one"));
}

/// A mouse that has already been used.
class UsedMouse final : public InputDevices {
public:
    explicit UsedMouse(std::vector<RawInput> inputs)
        : m_inputs(std::move(inputs))
    {
    }

    int fileDescriptor() const override { return m_signal; }
    void read(const Handler& handler) override
    {
        for (const RawInput& input : std::exchange(m_inputs, {}))
            handler(input);
    }

private:
    std::vector<RawInput> m_inputs;
    int m_signal = ::eventfd(1, EFD_CLOEXEC); // readable for good
};

TEST(PortalInputSource, aClickIsWhereThePointerWasAtItsTime)
{
    const auto track = std::make_shared<PointerTrack>();
    track->add(10, {100, 50});
    track->add(20, {300, 50});
    PortalInputSource source(
        track,
        std::make_unique<UsedMouse>(std::vector<RawInput>{
            {.type = RawInputType::LeftDown, .time = 15},
            {.type = RawInputType::RightDown, .time = 21}}));
    std::mutex mutex;
    std::vector<RawInput> seen;
    source.start([&](const RawInput& input) {
        const std::lock_guard lock(mutex);
        seen.push_back(input);
    });
    while (true) {
        const std::lock_guard lock(mutex);
        if (seen.size() == 2)
            break;
    }
    source.stop();
    EXPECT_EQ(seen[0].point, (Vec2{100, 50}));
    EXPECT_EQ(seen[1].point, (Vec2{300, 50}));
    EXPECT_EQ(source.reach(), InputSource::Reach::Everything);
    const auto sample = source.pointerSample(20);
    ASSERT_TRUE(sample);
    EXPECT_LT(sample->time, 20);
    EXPECT_EQ(sample->point, (Vec2{100, 50})) << "as late as it is known";
    PortalInputSource nothing(std::make_shared<PointerTrack>(), nullptr);
    EXPECT_FALSE(nothing.pointerSample(1));
    EXPECT_EQ(nothing.reach(), InputSource::Reach::PointerOnly);
}

} // namespace
} // namespace zento
