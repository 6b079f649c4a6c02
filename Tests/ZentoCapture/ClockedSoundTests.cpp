#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCapture/CameraClock.h"
#include "ZentoCapture/ClockedWav.h"
#include "ZentoCapture/SoundRing.h"
#include "ZentoMedia/AudioReader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <thread>
#include <vector>

namespace zento {
namespace {

constexpr double kStart = 5000; // of the clock
constexpr int kRate = 48000;

/// A device that hears a click every whole half second of the clock.
class ClickDevice {
public:
    /// `rate`: its samples in a second of the clock.
    explicit ClickDevice(double rate, std::size_t channelCount = 1)
        : m_rate(rate)
        , m_channelCount(channelCount)
    {
    }

    /// What it gives from `time` on.
    void deliver(ClockedWav& wav, double time, std::size_t length, int declaredRate) const
    {
        std::vector<float> samples(length, 0.1F);
        for (std::size_t i = 0; i < length; ++i) {
            const double halves = 2 * (time - kStart + static_cast<double>(i) / m_rate);
            if (std::abs(halves - std::round(halves)) * m_rate / 2 < 0.5) {
                samples[i] = 0.9F;
            }
        }
        const std::vector<std::span<const float>> channels(m_channelCount, samples);
        wav.append({time, declaredRate, channels});
    }

private:
    double m_rate;
    std::size_t m_channelCount;
};

/// Where clicks lie in a file, in seconds.
std::vector<double> clicks(const std::vector<float>& samples)
{
    std::vector<double> result;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double time = static_cast<double>(i) / kRate;
        if (samples[i] > 0.4F && (result.empty() || time - result.back() > 0.1)) {
            result.push_back(time);
        }
    }
    return result;
}

/// Every click lies at a whole half second, within so much.
void expectInStep(const std::vector<float>& samples, double tolerance, std::size_t count)
{
    const auto found = clicks(samples);
    EXPECT_EQ(found.size(), count);
    for (const double time : found) {
        EXPECT_NEAR(time, std::round(2 * time) / 2, tolerance);
    }
}

/// The file of a device whose cycles are `length` samples long and begin when `timeOf` says.
template <typename TimeOf>
std::vector<float>
recorded(const ClickDevice& device, int cycles, std::size_t length, TimeOf timeOf)
{
    const test::TemporaryFolder folder;
    ClockedWav wav(folder / "a.wav");
    for (int i = 0; i < cycles; ++i) {
        device.deliver(wav, timeOf(i), length, kRate);
    }
    EXPECT_EQ(wav.finish(), kStart);
    return test::readSound(folder / "a.wav").at(0);
}

TEST(ClockedWav, soundWithoutGapsIsKeptAsItIs)
{
    constexpr double kCycle = 1024.0 / kRate;
    const auto samples =
        recorded(ClickDevice(kRate), 200, 1024, [](int i) { return kStart + i * kCycle; });
    EXPECT_EQ(samples.size(), 200U * 1024);
    expectInStep(samples, 1.0 / kRate, 9);
}

TEST(ClockedWav, whatWasNotDeliveredIsSilence)
{
    // After the first cycle comes a jump of 40 ms, and later nothing for two seconds.
    constexpr double kCycle = 256.0 / kRate;
    const auto samples = recorded(ClickDevice(kRate), 600, 256, [](int i) {
        return kStart + i * kCycle + (i > 0 ? 0.04 : 0) + (i > 300 ? 2.0 : 0);
    });
    EXPECT_NEAR(static_cast<double>(samples.size()) / kRate, 600 * kCycle + 2.04, 1e-3);
    const auto isSilent = [&](double from, double to) {
        return std::all_of(
            samples.begin() + static_cast<std::ptrdiff_t>(from * kRate),
            samples.begin() + static_cast<std::ptrdiff_t>(to * kRate),
            [](float sample) { return sample == 0; });
    };
    EXPECT_TRUE(isSilent(kCycle, kCycle + 0.039));
    EXPECT_TRUE(isSilent(301 * kCycle + 0.041, 301 * kCycle + 2.039));
    EXPECT_FALSE(isSilent(301 * kCycle + 0.041, 301 * kCycle + 2.041));
    expectInStep(samples, 1.0 / kRate, 7);
}

TEST(ClockedWav, aCycleThatWasMissedLeavesNothingOutOfStep)
{
    constexpr double kCycle = 256.0 / kRate; // shorter than a jump
    const auto samples = recorded(ClickDevice(kRate), 400, 256, [](int i) {
        return kStart + (i + (i >= 100) + (i >= 101) + (i >= 300)) * kCycle;
    });
    EXPECT_EQ(samples.size(), 403U * 256);
    EXPECT_EQ(std::ranges::count(samples, 0.0F), 3 * 256);
    expectInStep(samples, 1.0 / kRate, 5);
}

TEST(ClockedWav, timeThatComesTwiceIsDropped)
{
    // The device goes back by 50 ms once.
    constexpr double kCycle = 1024.0 / kRate;
    const auto samples = recorded(ClickDevice(kRate), 100, 1024, [](int i) {
        return kStart + i * kCycle - (i >= 50 ? 0.05 : 0);
    });
    EXPECT_NEAR(static_cast<double>(samples.size()) / kRate, 100 * kCycle - 0.05, 1e-3);
    expectInStep(samples, 1.0 / kRate, 5);
}

TEST(ClockedWav, aDeviceThatRunsFastOrSlowStaysInStep)
{
    // 300 parts in a million, six times what sound hardware is allowed: 36 ms in two minutes.
    for (const double rate : {kRate * 1.0003, kRate * 0.9997}) {
        SCOPED_TRACE(rate);
        const auto samples = recorded(
            ClickDevice(rate), 5610, 1024, [rate](int i) { return kStart + i * 1024 / rate; });
        expectInStep(samples, SoundClock::kDriftLimit + 0.0005, 240);
        EXPECT_EQ(std::ranges::count(samples, 0.0F), 0); // no gap was made
    }
}

TEST(ClockedWav, soundOfAnotherFormatIsConvertedToTheFirst)
{
    const test::TemporaryFolder folder;
    ClockedWav wav(folder / "a.wav");
    const ClickDevice stereo(kRate, 2);
    const ClickDevice mono(kRate);
    const ClickDevice slow(32000, 1);
    double time = kStart;
    const auto second = [&](const ClickDevice& device, int rate) {
        for (int i = 0; i < 50; ++i) {
            device.deliver(wav, time, static_cast<std::size_t>(rate / 50), rate);
            time += 0.02;
        }
    };
    second(stereo, kRate);
    second(mono, kRate);
    second(slow, 32000);
    second(stereo, kRate);
    wav.finish();
    const auto channels = test::readSound(folder / "a.wav");
    ASSERT_EQ(channels.size(), 2U);
    EXPECT_EQ(AudioReader(folder / "a.wav").sampleRate(), kRate);
    EXPECT_NEAR(static_cast<double>(channels[0].size()), 4.0 * kRate, 100);
    for (const auto& channel : channels) {
        expectInStep(channel, 0.001, 8);
    }
}

TEST(ClockedWav, withoutSoundThereIsNoFileAndWithAFailureNoStart)
{
    const test::TemporaryFolder folder;
    ClockedWav silent(folder / "a.wav");
    EXPECT_EQ(silent.finish(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.wav"));
    ClockedWav failing(folder / "no folder" / "a.wav");
    ClickDevice(kRate).deliver(failing, kStart, 100, kRate);
    ClickDevice(kRate).deliver(failing, kStart, 100, kRate);
    EXPECT_EQ(failing.finish(), std::nullopt);
}

TEST(SoundRing, givesWhatWasPushedInOrderBetweenTwoThreads)
{
    constexpr int kStretches = 20000;
    SoundRing ring(16, 1000); // so that it is full and wraps again and again
    const std::jthread device([&] {
        std::array<float, 300> samples{};
        for (int i = 0; i < kStretches; ++i) {
            const std::size_t length = 1 + static_cast<std::size_t>(i) % 150;
            samples.fill(static_cast<float>(i));
            const std::array<const float*, 2> channels = {samples.data(), samples.data() + 150};
            while (!ring.push(i, kRate, channels, length)) {
                std::this_thread::yield();
            }
        }
    });
    for (int i = 0; i < kStretches;) {
        const auto sound = ring.front();
        if (!sound) {
            std::this_thread::yield();
            continue;
        }
        ASSERT_EQ(sound->time, i);
        ASSERT_EQ(sound->channels.size(), 2U);
        ASSERT_EQ(sound->channels[1].size(), 1 + static_cast<std::size_t>(i) % 150);
        ASSERT_EQ(sound->channels[0].front(), static_cast<float>(i));
        ASSERT_EQ(sound->channels[1].back(), static_cast<float>(i));
        ring.pop();
        ++i;
    }
    EXPECT_FALSE(ring.front());
}

TEST(SoundRing, refusesWhatHasNoRoom)
{
    SoundRing ring(2, 100);
    const std::vector<float> samples(200);
    const std::array<const float*, 1> channel = {samples.data()};
    EXPECT_FALSE(ring.push(0, kRate, channel, 101));
    EXPECT_TRUE(ring.push(1, kRate, channel, 60));
    EXPECT_FALSE(ring.push(2, kRate, channel, 41));
    EXPECT_TRUE(ring.push(3, kRate, channel, 40));
    EXPECT_FALSE(ring.push(4, kRate, channel, 0)); // no third stretch
    ring.pop();
    EXPECT_TRUE(ring.push(5, kRate, channel, 60));
    EXPECT_EQ(ring.front()->time, 3);
}

TEST(CameraClock, theCamerasStampsCountUntilTheyStray)
{
    CameraClock clock;
    // On a clock of the camera's own. The first picture is held up by 0.3 s, others by less.
    EXPECT_DOUBLE_EQ(clock.place(77.0, 100.3), 0);
    EXPECT_DOUBLE_EQ(clock.start().value(), 100.3);
    EXPECT_NEAR(clock.place(77.1, 100.13), 0.1, 1e-9);
    EXPECT_NEAR(clock.place(77.2, 100.2), 0.2, 1e-9);
    EXPECT_NEAR(clock.place(77.3, 100.9), 0.3, 1e-9);
    EXPECT_NEAR(clock.start().value(), 100.0, 1e-9);
    // Another camera, whose stamps begin elsewhere.
    EXPECT_NEAR(clock.place(3.0, 101.0), 1.0, 1e-9);
    EXPECT_NEAR(clock.place(3.1, 101.11), 1.1, 1e-9);
    // One without stamps.
    EXPECT_NEAR(clock.place({}, 102.0), 2.0, 1e-9);
    EXPECT_NEAR(clock.start().value(), 100.0, 1e-9);
}

} // namespace
} // namespace zento
