#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Music/MusicLibrary.h"
#include "Zento/Music/MusicSynth.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoEngine/BeatDetector.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <thread>

namespace zento {
namespace {

TrackRecipe recipe(const MusicLibrary::Track& track)
{
    return {.bpm = track.bpm, .bass = track.bass, .hatEvery = track.hatEvery};
}

/// FNV-1a over the bits of the samples.
std::uint64_t digest(const SynthesizedTrack& sound)
{
    std::uint64_t value = 0xcbf29ce484222325;
    for (const auto* channel : {&sound.left, &sound.right}) {
        for (const float sample : *channel)
            value = (value ^ std::bit_cast<std::uint32_t>(sample)) * 0x100000001b3;
    }
    return value;
}

/// The strength of a frequency in a stretch, by correlation.
double strength(std::span<const float> sound, double hertz)
{
    double real = 0;
    double imaginary = 0;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double angle = 2 * std::numbers::pi * hertz * static_cast<double>(i) / 44100;
        real += static_cast<double>(sound[i]) * std::cos(angle);
        imaginary += static_cast<double>(sound[i]) * std::sin(angle);
    }
    return std::hypot(real, imaginary) / static_cast<double>(sound.size());
}

TEST(MusicSynthTest, theSameBitsEverywhere)
{
    // Of the first run, on x86-64; no other machine may give others.
    const std::array<std::uint64_t, 3> expected = {
        16977626386173004364U, 8004838520274696924U, 14064625038378727952U};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& track = MusicLibrary::all().at(i);
        EXPECT_EQ(digest(synthesize(recipe(track), 60)), expected.at(i)) << track.id;
    }
}

TEST(MusicSynthTest, theBeatDetectorFindsTheTempoItWasMadeWith)
{
    for (const MusicLibrary::Track& track : MusicLibrary::all()) {
        SCOPED_TRACE(track.id);
        const SynthesizedTrack sound = synthesize(recipe(track), 60);
        const BeatGrid grid = BeatDetector::analyze(sound.left, 44100);
        const double lagStep = 512 / 44100.0;
        EXPECT_NEAR(grid.period, 60 / track.bpm, lagStep / 2);
    }
}

TEST(MusicSynthTest, endsFadeAndNothingIsOverdriven)
{
    for (const double seconds : {60.0, 3.0, 0.3}) {
        const SynthesizedTrack sound = synthesize(recipe(MusicLibrary::all().at(2)), seconds);
        ASSERT_EQ(sound.left.size(), static_cast<std::size_t>(seconds * 44100));
        EXPECT_EQ(sound.left.front(), 0);
        EXPECT_LT(std::abs(sound.left.back()), 1e-3F);
        for (const float sample : sound.right)
            ASSERT_LT(std::abs(sample), 1);
    }
}

TEST(MusicSynthTest, theBassPlaysItsLine)
{
    // Between kick and next beat only bass and a hat are left; the bass is what is low.
    const auto& track = MusicLibrary::all().at(1); // 100 beats a minute, a hat at each half
    const SynthesizedTrack sound = synthesize(recipe(track), 10);
    for (std::size_t beat = 2; beat < 6; ++beat) {
        const double semitones = track.bass.at(beat % track.bass.size());
        const double wanted = 55 * std::pow(2, semitones / 12);
        const std::size_t at = beat * 26460 + 13000;
        const auto stretch = std::span(sound.left).subspan(at, 10'000);
        for (const double other : {-2.0, 0.0, 7.0}) {
            if (other != semitones) {
                EXPECT_GT(
                    strength(stretch, wanted),
                    1.3 * strength(stretch, 55 * std::pow(2, other / 12)))
                    << beat << ' ' << other;
            }
        }
    }
}

class MusicLibraryTest : public ::testing::Test {
protected:
    MusicLibraryTest() { setenv("XDG_DATA_HOME", m_folder.path().c_str(), 1); }
    ~MusicLibraryTest() override { unsetenv("XDG_DATA_HOME"); }

    test::TemporaryFolder m_folder;
    const MusicLibrary::Track& m_track = MusicLibrary::all().at(0);
};

TEST_F(MusicLibraryTest, aTrackIsMadeOnceAndStaysAsItIs)
{
    EXPECT_FALSE(m_track.exists());
    double last = 0;
    const auto file = MusicLibrary::ensure(m_track, [&](double done) { last = done; });
    EXPECT_EQ(last, 1);
    EXPECT_EQ(file, m_folder.path() / "Zento" / "Music" / "pulse.m4a");
    EXPECT_TRUE(m_track.exists());
    EXPECT_NEAR(static_cast<double>(test::readSound(file).at(0).size()) / 44100, 60, 0.05);
    writeFile(file, "the user's");
    MusicLibrary::ensure(m_track);
    EXPECT_EQ(readFile(file), "the user's");
}

TEST_F(MusicLibraryTest, twoAtOnceBothSucceedAndLeaveNothingElse)
{
    std::filesystem::path first;
    {
        const std::jthread other([&] { first = MusicLibrary::ensure(m_track); });
        MusicLibrary::ensure(m_track);
    }
    EXPECT_EQ(test::readSound(first).size(), 2U);
    const std::filesystem::directory_iterator files(MusicLibrary::dir());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(MusicLibraryTest, whatDidNotGetFinishedIsGone)
{
    std::stop_source stop;
    const auto stopAtOnce = [&](double) { stop.request_stop(); };
    EXPECT_THROW(MusicLibrary::ensure(m_track, stopAtOnce, stop.get_token()), Error);
    EXPECT_TRUE(std::filesystem::is_empty(MusicLibrary::dir()));
    std::filesystem::remove(MusicLibrary::dir());
    writeFile(MusicLibrary::dir(), "in the way");
    EXPECT_THROW(MusicLibrary::ensure(m_track), Error);
}

} // namespace
} // namespace zento
