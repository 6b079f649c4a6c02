#include "TestSupport/Random.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoRender/AudioMixer.h"
#include "ZentoRender/MusicLevel.h"
#include "ZentoRender/SoundEffects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <numbers>
#include <string>

namespace zento {
namespace {

using testing::HasSubstr;

/// The effects' noise by its definition in arbitrary integers.
std::vector<double> noiseOf(std::uint64_t seed, std::size_t count)
{
    std::vector<double> values;
    std::uint64_t state = seed;
    for (std::size_t i = 0; i < count; ++i) {
        state = (state * 1664525 + 1013904223) % 4294967296;
        const double value = static_cast<double>(state);
        values.push_back((value < 2147483648.0 ? value : value - 4294967296.0) / 2147483648.0);
    }
    return values;
}

TEST(SoundEffects, clickIsATickAThumpAndABreath)
{
    const auto click = AudioMixer::clickSFX();
    ASSERT_EQ(click.size(), 2646U);
    const auto noise = noiseOf(12345, click.size());
    double breath = 0;
    for (std::size_t n = 0; n < click.size(); ++n) {
        const double t = static_cast<double>(n) / 44100;
        breath = breath * 0.55 + noise[n] * 0.45;
        const double wanted = std::sin(2 * std::numbers::pi * 1900 * t) * std::exp(-260 * t) * 0.5
                              + std::sin(2 * std::numbers::pi * 240 * t) * std::exp(-120 * t) * 0.45
                              + std::exp(-420 * t) * breath * 0.25;
        ASSERT_NEAR(static_cast<double>(click[n]), wanted, 1e-6) << n;
    }
}

TEST(SoundEffects, whooshIsABandOfNoiseThatSwells)
{
    const auto whoosh = AudioMixer::whooshSFX();
    ASSERT_EQ(whoosh.size(), 16758U);
    const auto noise = noiseOf(67890, whoosh.size());
    double low = 0;
    double lower = 0;
    for (std::size_t n = 0; n < whoosh.size(); ++n) {
        const double swell = std::sin(std::numbers::pi * static_cast<double>(n) / 16758);
        const double c = 2 * std::numbers::pi * (300 + 1100 * swell) / 44100;
        low = low * (1 - c) + noise[n] * c;
        lower = lower * (1 - c / 2) + low * (c / 2);
        const double wanted = (low - lower) * std::pow(swell, 1.6) * 1.6;
        ASSERT_NEAR(static_cast<double>(whoosh[n]), wanted, 1e-6) << n;
    }
    EXPECT_EQ(whoosh.data(), AudioMixer::whooshSFX().data()) << "made once";
}

TEST(Ducking, isTheMeanOfTheStepsOfTheLastTenthOfASecond)
{
    test::Random random(1);
    std::vector<DuckPoint> points; // in no order, some at one time
    points.reserve(12);
    for (int i = 0; i < 12; ++i)
        points.push_back(
            {random.pick(std::array{0.0, 0.03, 0.05, 0.4, 0.41}), random.uniform(-12, 0)});
    const double titleOffset = 0.25;
    DuckingCurve curve(points, titleOffset);

    std::ranges::stable_sort(points, {}, &DuckPoint::tOut);
    std::vector<double> sums{0}; // of the step function, by its definition
    for (std::size_t i = 0; i < 44100; ++i) {
        double level = 0;
        for (const DuckPoint& point : points)
            if (point.tOut <= static_cast<double>(i) / 44100 - titleOffset)
                level = point.gainDb;
        sums.push_back(sums.back() + level);
        const std::size_t from = i + 1 < 4410 ? 0 : i + 1 - 4410;
        const double mean = (sums[i + 1] - sums[from]) / static_cast<double>(i + 1 - from);
        ASSERT_NEAR(curve.next(), mean, 1e-9) << i;
    }
}

/// A bundle with files of constants: what is heard is then the gain itself.
class AudioMixerTest : public testing::Test {
protected:
    static constexpr float kLevel = 0.125F;

    void writeConstant(const std::string& name, double seconds, float level = kLevel)
    {
        const auto count = static_cast<std::size_t>(seconds * 44100);
        test::writeWav(m_folder / name, 44100, {std::vector<float>(count, level)});
    }

    AudioMixer::StereoSound mixed(double duration) const
    {
        auto sound = AudioMixer::mix(m_plan, duration, m_folder.path());
        return sound ? *std::move(sound) : AudioMixer::StereoSound{};
    }

    /// The factor sample `i` of the left side was multiplied with.
    static double gainAt(const AudioMixer::StereoSound& sound, std::size_t i)
    {
        return std::atanh(static_cast<double>(sound.left.at(i))) / static_cast<double>(kLevel);
    }

    test::TemporaryFolder m_folder;
    EditPlan m_plan;
};

TEST_F(AudioMixerTest, musicFadesDucksAndEndsByThePlan)
{
    writeConstant("music.m4a", 4);
    struct Sample {
        std::size_t at;
        double gain;
    };
    struct Case {
        const char* name;
        MusicPlan music; // in a film of 3 s with a title of 1 s
        std::vector<Sample> samples;
    };
    const Case cases[] = {
        {"as it is", {}, {{0, 1}, {132299, 1}}},
        {"softer", {.gainDb = -20}, {{0, 0.1}, {132299, 0.1}}},
        {"fades",
         {.fadeIn = 1, .fadeOut = 0.5},
         {{0, 0},
          {11025, 0.25},
          {44099, 44099 / 44100.0},
          {44100, 1},
          {110250, 1},
          {121275, 0.5},
          {132299, 1 / 22050.0}}},
        {"longer fade than film", {.fadeOut = 6}, {{0, 0.5}, {66150, 0.25}}},
        {"ends before the film",
         {.fadeOut = 1, .playDuration = 2},
         {{0, 1}, {44100, 1}, {66150, 0.5}, {88199, 1 / 44100.0}, {88200, 0}, {132299, 0}}},
        {"play duration beyond the film", {.fadeOut = 1, .playDuration = 9}, {{110250, 0.5}}},
        {"the file ends", {.sourceOffset = 2}, {{88199, 1}, {88200, 0}, {132299, 0}}},
        {"begins past its end", {.sourceOffset = 4.5}, {{0, 0}, {44100, 0}}},
        {"begins before its start",
         {.sourceOffset = -1, .fadeIn = 2},
         {{0, 0}, {44099, 0}, {44100, 0.5}, {88200, 1}}},
        {"steps back after the title",
         {.duckPoints = {{1, -20}, {1.5, 0}}},
         {{0, 1},
          {88199, 1},
          {88200 + 2204, std::pow(10, -0.5)},
          {88200 + 4409, 0.1},
          {110249, 0.1},
          {110250 + 4409, 1}}},
        {"ducked from the start", {.duckPoints = {{-1, -20}}}, {{0, 0.1}, {9000, 0.1}}},
    };
    m_plan.titleCard = TextCard{.duration = 1};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_plan.music = c.music;
        m_plan.music->file = "music.m4a";
        const auto sound = mixed(3);
        ASSERT_EQ(sound.left.size(), 132300U);
        EXPECT_EQ(sound.left, sound.right);
        for (const Sample& sample : c.samples)
            EXPECT_NEAR(gainAt(sound, sample.at), sample.gain, 2e-5) << sample.at;
    }
}

TEST_F(AudioMixerTest, tracksAreCutToTheEditSampleBySample)
{
    const auto track = test::noise(1, 441000);
    test::writeWav(m_folder / "narration.wav", 44100, {track, test::noise(2, 441000)});
    struct Case {
        const char* name;
        std::vector<SpeedSegment> timeRemap;
        double offset;
        double title;
    };
    const Case cases[] = {
        {"whole", {{0, 5, 1}}, 0, 0},
        {"cuts and a title", {{0.5, 1.25, 1}, {2, 3, 1}, {5.1, 5.2, 1}}, 0, 1.5},
        {"fast stretches are silent", {{0, 1, 1}, {1, 3, 2}, {3, 4, 1}}, 0, 0.1},
        {"nearly normal speeds are not", {{0, 1, 1.0099}, {1, 2, 0.9901}, {2, 3, 1.01}}, 0, 0},
        {"the track begins later", {{0, 3, 1}}, 1, 0},
        {"the track began before", {{0, 3, 1}}, -1.5, 0},
        {"beyond its end", {{8, 12, 1}}, 0, 0},
        {"shorter than two ramps", {{1, 1.01, 1}, {2, 2.001, 1}}, 0, 0},
        {"backwards", {{3, 4, 1}, {1, 2, 1}}, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_plan.timeRemap = c.timeRemap;
        m_plan.narration = NarrationPlan{"narration.wav", c.offset, -6};
        m_plan.titleCard.reset();
        if (c.title > 0)
            m_plan.titleCard = TextCard{.duration = c.title};
        const auto sound = mixed(4.5);

        // By the definition, with the whole track at hand.
        std::vector<float> wanted(198450, 0);
        double cursor = c.title;
        for (const SpeedSegment& segment : c.timeRemap) {
            const auto whole = [](double x) { return static_cast<long>(x * 44100); };
            const long src = whole(segment.sourceStart - c.offset);
            const long dst = whole(cursor);
            const long count = whole(segment.sourceEnd - segment.sourceStart);
            for (long k = 0; k < count && std::abs(segment.speed - 1) < 0.01; ++k) {
                if (src + k < 0 || src + k >= 441000 || dst + k >= 198450)
                    continue;
                double gain = std::pow(10, -6 / 20.0);
                gain *= k <= 263 ? static_cast<double>(k) / 264 : 1;
                gain *= count - k <= 263 ? static_cast<double>(count - k) / 264 : 1;
                wanted[static_cast<std::size_t>(dst + k)] +=
                    static_cast<float>(gain) * track[static_cast<std::size_t>(src + k)];
            }
            cursor += (segment.sourceEnd - segment.sourceStart) / segment.speed;
        }
        for (float& sample : wanted)
            sample = std::tanh(sample);
        EXPECT_EQ(sound.left, wanted);
        EXPECT_NE(sound.right, wanted) << "right has its own";
    }
}

TEST_F(AudioMixerTest, effectsSoundAtTheirCueAfterTheTitle)
{
    m_plan.titleCard = TextCard{.duration = 2};
    m_plan.sfx = {{1, "click", 1}, {1.5, "whoosh", 0.7}, {0.5, "bell", 1}, {3.99, "click", 0.5}};
    const auto sound = mixed(6);
    const auto expectEffect = [&](std::span<const float> effect, double gain, std::size_t at) {
        for (std::size_t i = 0; i < effect.size() && at + i < sound.left.size(); ++i) {
            const double wanted = std::tanh(static_cast<double>(effect[i]) * gain);
            ASSERT_NEAR(static_cast<double>(sound.left[at + i]), wanted, 1e-6) << i;
        }
    };
    expectEffect(AudioMixer::clickSFX(), 0.45, 132300);
    expectEffect(AudioMixer::whooshSFX(), 0.22 * 0.7, 154350);
    expectEffect(AudioMixer::clickSFX(), 0.45 * 0.5, 264159); // cut off by the film's end
    EXPECT_EQ(sound.left, sound.right);
    EXPECT_EQ(test::levelOf(sound.left, 0, 132300), 0) << "the title and an unknown effect";
}

TEST_F(AudioMixerTest, everythingAtOnceStaysWithinFullScale)
{
    writeConstant("loud.wav", 2, 3.0F);
    m_plan.music = MusicPlan{.file = "loud.wav", .gainDb = 12};
    m_plan.narration = NarrationPlan{"loud.wav", 0, 12};
    m_plan.systemAudio = NarrationPlan{(m_folder / "loud.wav").string(), 0, 12};
    m_plan.timeRemap = {{0, 1, 1}};
    m_plan.sfx = {{-0.01, "click", 3}, {0.5, "whoosh", 3}};
    const auto sound = mixed(1);
    EXPECT_LE(*std::ranges::max_element(sound.left), 1);
    EXPECT_GE(*std::ranges::min_element(sound.left), -1);
    EXPECT_GT(test::levelOf(sound.left, 1000, 43000), 0.99);
}

TEST_F(AudioMixerTest, waveformIsThePeakOfEveryFourthSample)
{
    const auto sound = test::noise(5, 44100);
    test::writeWav(m_folder / "a.wav", 44100, {sound, std::vector<float>(44100, 0)});
    m_plan.music = MusicPlan{.file = "a.wav"};
    const auto peaks = AudioMixer::waveform(m_plan, 1, m_folder.path(), 7);
    ASSERT_EQ(peaks.size(), 7U);
    for (std::size_t bin = 0; bin < 7; ++bin) {
        float peak = 0;
        for (std::size_t i = 44100 * bin / 7; i < 44100 * (bin + 1) / 7; i += 4)
            peak = std::max(peak, std::abs(std::tanh(sound[i])));
        EXPECT_EQ(peaks[bin], peak);
    }
    const auto waveform = [&](double duration, int bins) {
        return AudioMixer::waveform(m_plan, duration, m_folder.path(), bins);
    };
    EXPECT_EQ(waveform(5 / 44100.0 + 1e-9, 9).size(), 9U) << "more bins than samples";
    EXPECT_TRUE(waveform(1, 0).empty());
    EXPECT_TRUE(waveform(0, 9).empty());
    m_plan.music->file = "gone.wav";
    EXPECT_TRUE(waveform(1, 9).empty());
}

TEST_F(AudioMixerTest, loadsStereoAtTheMixesRate)
{
    const auto sound = test::noise(6, 20000);
    test::writeWav(m_folder / "mono.wav", 44100, {sound});
    EXPECT_EQ(
        AudioMixer::loadStereo(m_folder / "mono.wav"), (AudioMixer::StereoSound{sound, sound}));
    test::writeWav(
        m_folder / "eight.wav", 192000, test::Channels(8, test::tone(441, 192000, 192000)));
    EXPECT_NEAR(
        static_cast<double>(AudioMixer::loadStereo(m_folder / "eight.wav").left.size()), 44100, 2);
    test::writeWav(m_folder / "empty.wav", 44100, {{}});
    EXPECT_EQ(AudioMixer::loadStereo(m_folder / "empty.wav"), AudioMixer::StereoSound{});
}

TEST_F(AudioMixerTest, noSamplesMakeNoSoundAndNoFile)
{
    m_plan.sfx = {{0, "click", 1}};
    for (const double duration : {0.0, -1.0, 0.9 / 44100, std::nan("")}) {
        EXPECT_FALSE(AudioMixer::mix(m_plan, duration, m_folder.path()));
        EXPECT_FALSE(
            AudioMixer::renderSoundtrack(m_plan, duration, m_folder.path(), m_folder / "a.m4a"));
    }
    EXPECT_FALSE(std::filesystem::exists(m_folder / "a.m4a"));
    EXPECT_TRUE(AudioMixer::mix(m_plan, 1.1 / 44100, m_folder.path()));
    EXPECT_THROW(AudioMixer::mix(m_plan, 1e18, m_folder.path()), Error) << "no such memory";
}

TEST_F(AudioMixerTest, whatCannotBeReadFailsTheMixByItsName)
{
    std::ofstream(m_folder / "text.mp3") << "not a song";
    const std::function<void(const std::string&)> places[] = {
        [&](const std::string& file) { m_plan.music = MusicPlan{.file = file}; },
        [&](const std::string& file) { m_plan.narration = NarrationPlan{file, 0, 0}; },
        [&](const std::string& file) { m_plan.systemAudio = NarrationPlan{file, 0, 0}; },
    };
    for (const auto& place : places) {
        for (const char* file : {"gone.wav", "text.mp3", "/gone/too.wav"}) {
            m_plan = {};
            place(file);
            try {
                mixed(1);
                ADD_FAILURE() << "nothing was thrown";
            } catch (const Error& error) {
                EXPECT_THAT(error.what(), HasSubstr(file));
            }
        }
    }
}

TEST_F(AudioMixerTest, endsSoonAfterItIsStopped)
{
    writeConstant("a.wav", 20);
    m_plan.music = MusicPlan{.file = "a.wav"};
    const auto expectCancelled = [&](const auto& work) {
        try {
            work();
            ADD_FAILURE() << "not cancelled";
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::kCancelled) << error.what();
        }
    };
    std::stop_source before;
    before.request_stop();
    expectCancelled([&] { AudioMixer::mix(m_plan, 20, m_folder.path(), before.get_token()); });
    expectCancelled([&] { AudioMixer::loadStereo(m_folder / "a.wav", before.get_token()); });
    std::stop_source during;
    double share = 0;
    expectCancelled([&] {
        AudioMixer::renderSoundtrack(
            m_plan, 20, m_folder.path(), m_folder / "a.m4a", during.get_token(), [&](double done) {
                share = done;
                if (done > 0.3)
                    during.request_stop();
            });
    });
    EXPECT_LT(share, 0.35);
}

} // namespace
} // namespace zento
