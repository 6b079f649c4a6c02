#include "TestSupport/DiskLimits.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/ProResWriter.h"
#include "ZentoMedia/VideoDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace zento {
namespace {

using namespace test;
using testing::HasSubstr;

constexpr double kTick = 1.0 / 60000;

template <typename Sample>
std::vector<Sample> samplesOf(const Plane<const Sample>& plane)
{
    std::vector<Sample> samples;
    for (int y = 0; y < plane.height; ++y)
        samples.insert(samples.end(), plane.row(y), plane.row(y) + plane.width);
    return samples;
}

int largestDifference(const Plane<const std::uint16_t>& a, const Plane<const std::uint16_t>& b)
{
    int largest = 0;
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < a.width; ++x)
            largest = std::max(largest, std::abs(a.row(y)[x] - b.row(y)[x]));
    }
    return largest;
}

/// Appends noise until the writer gives up for good, or `limit` pictures are in.
void fillWithNoise(ProResWriter& writer, VideoSize size, int limit)
{
    std::vector<RecordedPicture> pictures;
    pictures.reserve(4);
    for (unsigned seed = 0; seed < 4; ++seed)
        pictures.push_back(noiseRecordedPicture(seed, size.width, size.height));
    // Slots come back while the writer works; after a failure none ever does.
    for (int i = 0; i < limit && !writer.hasFailed();) {
        if (writer.append(pictures[static_cast<std::size_t>(i % 4)].planes, i / 60.0))
            ++i;
        else
            std::this_thread::yield();
    }
}

class RecordingSize : public testing::TestWithParam<VideoSize> {};

TEST_P(RecordingSize, comesBackAsItWasGiven)
{
    const TemporaryFolder folder;
    const VideoSize size = GetParam();
    writeNumberedRecording(folder / "screen.mov", size, countedFrames(40000, 5, 60));

    EXPECT_EQ(VideoDecoder(folder / "screen.mov").naturalSize(), size);
    const auto frames = readFrames(folder / "screen.mov");
    ASSERT_EQ(frames.size(), 5U);
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        const VideoFrame& frame = frames[static_cast<std::size_t>(i)];
        EXPECT_EQ(frame.size(), size);
        ASSERT_EQ(frame.bitDepth(), 10);
        EXPECT_EQ(numberOf(frame), 40000 + i);
        EXPECT_NEAR(frame.time(), i / 60.0, kTick / 2);
        const auto sent = numberedRecordedPicture(40000 + i, size.width, size.height);
        EXPECT_LE(largestDifference(frame.planes10().cb, sent.planes.cb), 4);
        EXPECT_LE(largestDifference(frame.planes10().cr, sent.planes.cr), 4);
        EXPECT_EQ(frame.planes10().cb.width, size.width / 2);
        EXPECT_EQ(frame.planes10().cb.height, size.height);
    }
}

TEST(Recording, theEndStaysTheEnd)
{
    const TemporaryFolder folder;
    writeNumberedRecording(folder / "screen.mov", {64, 48}, countedFrames(0, 2, 60));
    VideoDecoder decoder(folder / "screen.mov");
    for (const bool isFrame : {true, true, false, false, false})
        EXPECT_EQ(decoder.next().has_value(), isFrame);
}

INSTANTIATE_TEST_SUITE_P(
    Sizes,
    RecordingSize,
    testing::Values(
        VideoSize{16, 16}, VideoSize{322, 182}, VideoSize{640, 360}, VideoSize{1918, 34}),
    [](const auto& row) {
        return std::to_string(row.param.width) + "x" + std::to_string(row.param.height);
    });

TEST(Recording, keepsEveryTimeToATick)
{
    struct Case {
        const char* name;
        std::vector<double> times;
        std::vector<double> expected;
    };
    const std::vector<Case> cases{
        {"steady", {0, 1 / 60.0, 2 / 60.0}, {0, 1 / 60.0, 2 / 60.0}},
        {"gaps", {0, 0.1, 3.25, 7200}, {0, 0.1, 3.25, 7200}},
        {"off the grid", {0, 0.012345678, 0.5}, {0, 0.012345678, 0.5}},
        {"starting late", {1.5, 2}, {1.5, 2}},
        {"twice the same", {0, 0.5, 0.5, 0.75}, {0, 0.5, 0.5 + kTick, 0.75}},
        {"backwards", {0, 0.5, 0.25, 0.75}, {0, 0.5, 0.5 + kTick, 0.75}},
        {"negative", {-1, 1}, {0, 1}},
        {"one frame", {0}, {0}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        std::vector<NumberedFrame> frames;
        frames.reserve(row.times.size());
        for (const double time : row.times)
            frames.push_back({static_cast<int>(frames.size()), time});
        writeNumberedRecording(folder / "screen.mov", {64, 48}, frames);

        const auto read = readNumbers(folder / "screen.mov");
        ASSERT_EQ(read.size(), row.expected.size());
        for (std::size_t i = 0; i < read.size(); ++i) {
            EXPECT_EQ(read[i].number, static_cast<int>(i));
            EXPECT_NEAR(read[i].time, row.expected[i], kTick / 2 + 1e-9);
        }
    }
}

TEST(Recording, repeatedPictureIsSharedAndTheSameAsIfDecoded)
{
    const TemporaryFolder folder;
    // 7 after 7 is not decoded; 7 after 8 is.
    writeNumberedRecording(
        folder / "screen.mov",
        {128, 96},
        {{7, 0}, {7, 0.1}, {7, 0.2}, {8, 0.3}, {7, 0.4}, {8, 0.5}, {8, 0.6}});
    const auto frames = readFrames(folder / "screen.mov");
    ASSERT_EQ(frames.size(), 7U);

    const auto isShared = [&](std::size_t a, std::size_t b) {
        return frames[a].identity() == frames[b].identity();
    };
    EXPECT_TRUE(isShared(0, 1));
    EXPECT_TRUE(isShared(0, 2));
    EXPECT_FALSE(isShared(2, 3));
    EXPECT_FALSE(isShared(3, 4));
    EXPECT_FALSE(isShared(2, 4));
    EXPECT_TRUE(isShared(5, 6));
    EXPECT_EQ(frames[0].planes10().y.data, frames[2].planes10().y.data);
    EXPECT_EQ(samplesOf(frames[2].planes10().y), samplesOf(frames[4].planes10().y));
    EXPECT_EQ(samplesOf(frames[2].planes10().cb), samplesOf(frames[4].planes10().cb));
    EXPECT_NEAR(frames[2].time(), 0.2, kTick);
    EXPECT_NEAR(frames[6].time(), 0.6, kTick);
}

TEST(Recording, framesOutliveTheirDecoderAndFile)
{
    std::vector<VideoFrame> frames;
    {
        const TemporaryFolder folder;
        writeNumberedRecording(folder / "screen.mov", {64, 48}, countedFrames(100, 40, 60));
        frames = readFrames(folder / "screen.mov");
    }
    ASSERT_EQ(frames.size(), 40U);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(numberOf(frames[static_cast<std::size_t>(i)]), 100 + i);
}

TEST(Recording, moreThreadsDecodeTheSame)
{
    const TemporaryFolder folder;
    writeNumberedRecording(folder / "screen.mov", {320, 180}, countedFrames(0, 12, 30));
    const auto one = readFrames(folder / "screen.mov", 1);
    const auto four = readFrames(folder / "screen.mov", 4);
    ASSERT_EQ(one.size(), four.size());
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(one[i].time(), four[i].time());
        EXPECT_EQ(samplesOf(one[i].planes10().y), samplesOf(four[i].planes10().y));
        EXPECT_EQ(samplesOf(one[i].planes10().cr), samplesOf(four[i].planes10().cr));
    }
}

TEST(Recording, refusesWhileAllSlotsAreOutAndLosesNoneOfThem)
{
    const TemporaryFolder folder;
    ProResWriter writer(folder / "screen.mov", 64, 48);
    std::vector<ProResWriter::Slot> slots;
    while (auto slot = writer.acquire()) {
        ASSERT_LT(slots.size(), 100U);
        slots.push_back(std::move(*slot));
    }
    ASSERT_GE(slots.size(), 4U);
    EXPECT_FALSE(writer.isReady());
    EXPECT_FALSE(writer.append(numberedRecordedPicture(1, 64, 48).planes, 0));

    const std::size_t count = slots.size();
    slots.pop_back();
    EXPECT_TRUE(writer.isReady());
    EXPECT_TRUE(writer.append(numberedRecordedPicture(0, 64, 48).planes, 0));
    for (std::size_t i = 0; i < slots.size(); ++i) {
        const auto number = static_cast<int>(i) + 1;
        const auto picture = numberedRecordedPicture(number, 64, 48);
        const auto& planes = slots[i].planes();
        for (int y = 0; y < 48; ++y)
            std::copy_n(picture.planes.y.row(y), 64, planes.y.row(y));
        for (int y = 0; y < 48; ++y)
            std::copy_n(picture.planes.cb.row(y), 32, planes.cb.row(y));
        for (int y = 0; y < 48; ++y)
            std::copy_n(picture.planes.cr.row(y), 32, planes.cr.row(y));
        writer.submit(std::move(slots[i]), number / 60.0);
    }
    writer.finish();
    EXPECT_FALSE(writer.isReady());

    const auto read = readNumbers(folder / "screen.mov");
    ASSERT_EQ(read.size(), count);
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ(read[i].number, static_cast<int>(i));
}

TEST(Recording, aSlotMayOutliveItsWriter)
{
    const TemporaryFolder folder;
    std::vector<ProResWriter::Slot> slots;
    {
        ProResWriter writer(folder / "screen.mov", 64, 48);
        if (auto slot = writer.acquire())
            slots.push_back(std::move(*slot));
    }
    ASSERT_EQ(slots.size(), 1U);
    slots[0].planes().cr.row(47)[31] = 512;
    EXPECT_EQ(slots[0].planes().cr.row(47)[31], 512);
}

TEST(Recording, tellsWhatCannotBeWritten)
{
    struct Case {
        const char* name;
        std::string file; // in the folder unless absolute
        VideoSize size;
        std::string domain;
        int code;
    };
    const std::vector<Case> cases{
        {"no folder", "none/screen.mov", {64, 48}, "errno", ENOENT},
        {"a folder", "", {64, 48}, "errno", EISDIR},
        {"full disk", "/dev/full", {64, 48}, "errno", ENOSPC},
        {"odd width", "screen.mov", {63, 48}, "Zento", ErrorCode::kMovieNotStarted},
        {"no height", "screen.mov", {64, 0}, "Zento", ErrorCode::kMovieNotStarted},
        {"no pictures", "screen.mov", {64, 48}, "Zento", ErrorCode::kMovieNotFinished},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        const auto path = folder / row.file;
        try {
            ProResWriter writer(path, row.size.width, row.size.height);
            if (row.name == std::string("full disk"))
                writer.append(numberedRecordedPicture(1, 64, 48).planes, 0);
            writer.finish();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.domain(), row.domain);
            EXPECT_EQ(error.code(), row.code);
            EXPECT_THAT(error.what(), HasSubstr(path.string()));
        }
    }
}

/// What `finish` said, and how much of the recording can be read.
std::string recordUntilFull(const std::filesystem::path& path)
{
    std::string said = "finished";
    {
        ProResWriter writer(path, 320, 180);
        fillWithNoise(writer, {320, 180}, 400);
        if (writer.isReady())
            said = "still ready";
        try {
            writer.finish();
        } catch (const Error& error) {
            said = error.domain() + " " + std::to_string(error.code()) + " " + error.what();
        }
    }
    const auto frames = readFrames(path);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (std::abs(frames[i].time() - static_cast<double>(i) / 60) > kTick)
            said += ", out of order";
    }
    return said + (frames.size() > 10 ? ", readable" : ", unreadable");
}

TEST(Recording, readableUpToTheFileSizeLimit)
{
    const TemporaryFolder folder;
    const FileSizeLimit limit(3 << 20);
    const std::string said = recordUntilFull(folder / "screen.mov");
    EXPECT_THAT(said, HasSubstr("errno " + std::to_string(EFBIG)));
    EXPECT_THAT(said, HasSubstr((folder / "screen.mov").string()));
    EXPECT_THAT(said, HasSubstr(", readable"));
    EXPECT_LE(file_size(folder / "screen.mov"), 3U << 20);
}

TEST(Recording, readableUpToTheEndOfTheDisk)
{
    const auto said =
        onSmallDisk(3 << 20, [](const auto& disk) { return recordUntilFull(disk / "s.mov"); });
    if (!said)
        GTEST_SKIP() << "no filesystem of its own for a process here";
    EXPECT_THAT(said.value_or(""), HasSubstr("errno " + std::to_string(ENOSPC)));
    EXPECT_THAT(said.value_or(""), HasSubstr("s.mov"));
    EXPECT_THAT(said.value_or(""), HasSubstr(", readable"));
}

TEST(Recording, givesUnusedRoomBack)
{
    // The room set aside for the index must not stay allocated behind a small file.
    const auto said = onSmallDisk(64 << 20, [](const std::filesystem::path& disk) {
        writeNumberedRecording(disk / "s.mov", {64, 48}, countedFrames(0, 3, 60));
        const auto space = std::filesystem::space(disk);
        return std::string(space.capacity - space.available < (1U << 20) ? "small" : "large");
    });
    if (!said)
        GTEST_SKIP() << "no filesystem of its own for a process here";
    EXPECT_EQ(said.value_or(""), "small");
}

} // namespace
} // namespace zento
