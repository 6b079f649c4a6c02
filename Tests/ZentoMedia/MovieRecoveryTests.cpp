#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Random.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/MovieRecovery.h"
#include "ZentoMedia/ProResWriter.h"
#include "ZentoMedia/VideoDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace zento {
namespace {

using namespace test;
using testing::HasSubstr;

constexpr VideoSize kSize{64, 48};
constexpr double kTick = 1.0 / 60000;

/// The file a recording of these frames leaves when its process is killed a little later.
std::string cutShort(const std::filesystem::path& path, const std::vector<NumberedFrame>& frames)
{
    writeGrowingRecording(path, kSize, frames);
    return readFile(path);
}

/// Twelve steady frames, two after a pause, one at the end of a long one.
std::vector<NumberedFrame> someFrames()
{
    auto frames = countedFrames(500, 12, 10);
    frames.insert(frames.end(), {{512, 3.0}, {513, 3.0125}, {514, 90.5}});
    return frames;
}

TEST(GrowingMovie, holdsAFrameSoonEvenIfNoneFollows)
{
    const TemporaryFolder folder;
    ProResWriter writer(folder / "screen.mov", kSize.width, kSize.height);
    appendNumbered(writer, kSize, {1, 0});
    EXPECT_TRUE(comesToHold(folder / "screen.mov", 1));
    appendNumbered(writer, kSize, {2, 8});
    appendNumbered(writer, kSize, {3, 8.1});
    EXPECT_TRUE(comesToHold(folder / "screen.mov", 3));
    writer.finish();
    EXPECT_EQ(readNumbers(folder / "screen.mov").size(), 3U);
}

TEST(GrowingMovie, recoveredIsTheSameAsFinished)
{
    const TemporaryFolder folder;
    writeNumberedRecording(folder / "finished.mov", kSize, someFrames());
    cutShort(folder / "cut.mov", someFrames());

    MovieRecovery recovery(folder / "cut.mov");
    EXPECT_FALSE(recovery.wasFinished());
    EXPECT_EQ(recovery.frameCount(), 15);
    EXPECT_NEAR(recovery.lastTime(), 90.5, kTick);
    recovery.finish();
    const MovieRecovery again(folder / "cut.mov");
    EXPECT_TRUE(again.wasFinished());
    EXPECT_EQ(again.frameCount(), 15);
    EXPECT_NEAR(again.lastTime(), 90.5, kTick);
    EXPECT_EQ(readNumbers(folder / "cut.mov"), readNumbers(folder / "finished.mov"));
    EXPECT_NEAR(
        VideoDecoder(folder / "cut.mov").declaredDuration(),
        VideoDecoder(folder / "finished.mov").declaredDuration(),
        kTick);
}

/// Recovers what is left of a movie and gives the numbers of its frames; none if it says that it
/// cannot, and has not touched it.
std::vector<NumberedFrame> recovered(const std::filesystem::path& path)
{
    const std::string before = readFile(path);
    try {
        MovieRecovery recovery(path);
        recovery.finish();
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr(path.string()));
        EXPECT_EQ(readFile(path), before);
        return {};
    }
    EXPECT_TRUE(MovieRecovery(path).wasFinished());
    return readNumbers(path);
}

TEST(GrowingMovie, cutAnywhereItKeepsWhatIsWhole)
{
    const TemporaryFolder folder;
    const std::string whole = cutShort(folder / "whole.mov", someFrames());
    const auto all = readNumbers(folder / "whole.mov");
    Random random(7);
    std::vector<std::size_t> cuts{whole.size(), whole.size() - 1, 0, 8, 20, 40};
    for (int i = 0; i < 60; ++i)
        cuts.push_back(random.below(whole.size()));
    std::ranges::sort(cuts);
    std::size_t least = 0;
    for (const std::size_t cut : cuts) {
        SCOPED_TRACE(cut);
        writeFile(folder / "cut.mov", whole.substr(0, cut));
        const auto frames = recovered(folder / "cut.mov");
        EXPECT_GE(frames.size(), least);
        least = frames.size();
        ASSERT_LE(frames.size(), all.size());
        EXPECT_TRUE(std::equal(frames.begin(), frames.end(), all.begin()));
    }
    EXPECT_EQ(least, all.size());
}

TEST(GrowingMovie, recoveringThatWasCutShortItselfGoesOn)
{
    const TemporaryFolder folder;
    const std::string whole = cutShort(folder / "cut.mov", someFrames());
    MovieRecovery(folder / "cut.mov").finish();
    const std::string finished = readFile(folder / "cut.mov");
    const auto expected = readNumbers(folder / "cut.mov");
    // All the file can be before its last write: the old bytes, then a part of the index.
    for (std::size_t size = whole.size(); size <= finished.size(); size += 50) {
        SCOPED_TRACE(size);
        writeFile(folder / "cut.mov", whole + finished.substr(whole.size(), size - whole.size()));
        EXPECT_EQ(readNumbers(folder / "cut.mov"), expected) << "not readable as it is";
        EXPECT_EQ(recovered(folder / "cut.mov"), expected);
    }
}

TEST(GrowingMovie, finishedIsLeftAlone)
{
    const TemporaryFolder folder;
    writeNumberedRecording(folder / "screen.mov", kSize, someFrames());
    const std::string before = readFile(folder / "screen.mov");
    MovieRecovery(folder / "screen.mov").finish();
    EXPECT_EQ(readFile(folder / "screen.mov"), before);
}

TEST(GrowingMovie, writingToARemovedFolderIsTold)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "bundle");
    ProResWriter writer(folder / "bundle/screen.mov", kSize.width, kSize.height);
    appendNumbered(writer, kSize, {1, 0});
    std::filesystem::remove_all(folder / "bundle");
    EXPECT_THROW(writer.finish(), Error);
}

} // namespace
} // namespace zento
