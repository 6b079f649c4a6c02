#include "DesktopTest.h"
#include "SoundStage/FakeCamera.h"
#include "SoundStage/PrivateSound.h"
#include "SoundStage/SoundPlayer.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCapture/CameraRecorder.h"
#include "ZentoCapture/CaptureSession.h"
#include "ZentoCapture/DeviceWatch.h"
#include "ZentoCapture/MicRecorder.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCapture/SoundOutput.h"
#include "ZentoCapture/SystemAudioWriter.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <numbers>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <system_error>
#include <vector>

namespace zento {
namespace {

using test::FakeCamera;
using test::SoundPlayer;

constexpr int kRate = 48000;

class SideRecorderTest : public DesktopTest {
protected:
    test::PrivateSound m_sound{stage()};
    test::TemporaryFolder m_folder;
};

/// How much of a tone a stretch of sound holds, 0 to about 0.5 for a `toneAt`.
double amountOf(double hertz, std::span<const float> sound)
{
    double cosine = 0;
    double sine = 0;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double angle = 2 * std::numbers::pi * hertz * static_cast<double>(i) / kRate;
        cosine += std::cos(angle) * double{sound[i]};
        sine += std::sin(angle) * double{sound[i]};
    }
    return 2 * std::hypot(cosine, sine) / static_cast<double>(sound.size());
}

/// The same of the last quarter of a second of a file that may still grow.
double amountAtEnd(double hertz, const std::filesystem::path& file)
{
    constexpr std::size_t kLength = kRate / 4;
    constexpr std::uintmax_t kSomeSeconds = 500'000; // bytes
    std::error_code absent;
    const auto size = std::filesystem::file_size(file, absent);
    if (absent || size < kSomeSeconds) {
        return 0;
    }
    const auto sound = test::readSound(file).at(0);
    return sound.size() < kLength ? 0 : amountOf(hertz, std::span(sound).last(kLength));
}

/// Those of a file that may still grow.
std::vector<double> beeps(const std::filesystem::path& file)
{
    constexpr std::uintmax_t kSome = 100'000; // bytes; its header then tells of samples
    std::error_code absent;
    const auto size = std::filesystem::file_size(file, absent);
    return absent || size < kSome ? std::vector<double>()
                                  : test::wholeBeeps(test::readSound(file).at(0), kRate);
}

/// Until a recorder has its first sample and so much has been played since.
bool waitForSound(const SideRecorder& recorder, const SoundPlayer& player, double seconds)
{
    return eventually([&] {
        const auto start = recorder.startTime();
        return start && player.playedUntil() > *start + seconds;
    });
}

TEST_F(SideRecorderTest, devicesAreListedAsTheyComeAndGo)
{
    DeviceWatch watch;
    const auto has = [&](const char* name) {
        const auto microphones = watch.devices().microphones;
        return std::ranges::find(microphones, name, &CaptureDevice::id) != microphones.end();
    };
    EXPECT_FALSE(has("mic"));
    const pid_t microphone = m_sound.plugInMicrophone("mic");
    EXPECT_TRUE(eventually([&] { return has("mic"); }));
    kill(microphone, SIGTERM);
    EXPECT_TRUE(eventually([&] { return !has("mic"); }));
    EXPECT_FALSE(has(test::PrivateSound::kSpeakers)) << "what is played is no microphone";
}

TEST_F(SideRecorderTest, whatIsPlayedAndSaidLiesInItsPlaceOnTheClock)
{
    constexpr double kPeriod = 0.25;
    m_sound.plugInMicrophone("mic");
    const SoundPlayer speakers(
        test::PrivateSound::kSpeakers, [](double t) { return test::beepsAt(t, kPeriod); });
    const SoundPlayer voice("mic-feed", [](double t) { return test::beepsAt(t, kPeriod); });
    MicRecorder microphone;
    SystemAudioWriter systemAudio;
    // An id that no device has means the default one.
    microphone.start(m_folder / "narration.wav", "no such microphone");
    systemAudio.start(m_folder / "system.wav", {});
    for (const char* file : {"narration.wav", "system.wav"}) {
        ASSERT_TRUE(eventually([&] { return beeps(m_folder / file).size() >= 8; })) << file;
    }
    const auto check = [&](const char* file, std::optional<double> start) {
        SCOPED_TRACE(file);
        ASSERT_TRUE(start);
        for (const double beep : beeps(m_folder / file)) {
            const double host = *start + beep;
            const double late = host - std::round(host / kPeriod) * kPeriod;
            EXPECT_GT(late, -0.005);
            EXPECT_LT(late, 0.015);
        }
    };
    check("narration.wav", microphone.stop());
    check("system.wav", systemAudio.stop());
}

TEST_F(SideRecorderTest, aMicrophoneIsFoundByItsName)
{
    m_sound.plugInMicrophone("quiet");
    m_sound.plugInMicrophone("loud");
    const SoundPlayer voice("loud-feed", [](double t) { return test::toneAt(t, 700); });
    for (const auto& [name, isLoud] : {std::pair{"quiet", false}, {"loud", true}}) {
        SCOPED_TRACE(name);
        MicRecorder microphone;
        microphone.start(m_folder / "narration.wav", name);
        ASSERT_TRUE(waitForSound(microphone, voice, 4));
        microphone.stop();
        // A busy machine may swallow a part of it, and adds none.
        const double amount = amountOf(700, test::readSound(m_folder / "narration.wav").at(0));
        EXPECT_EQ(amount > 0.01, isLoud) << amount;
    }
}

TEST_F(SideRecorderTest, anUnpluggedMicrophoneDoesNotHearTheSpeakers)
{
    const pid_t microphone = m_sound.plugInMicrophone("mic");
    const SoundPlayer speakers(
        test::PrivateSound::kSpeakers, [](double t) { return test::toneAt(t, 500); });
    std::optional<SoundPlayer> voice(
        std::in_place, "mic-feed", [](double t) { return test::toneAt(t, 900); });
    MicRecorder recorder;
    recorder.start(m_folder / "narration.wav", "mic");
    ASSERT_TRUE(waitForSound(recorder, *voice, 1.0));
    voice.reset();
    kill(microphone, SIGTERM);
    ASSERT_TRUE(eventually([] { return !test::hasNode("mic"); }));
    const double gone = monotonicSeconds();
    ASSERT_TRUE(eventually([&] { return speakers.playedUntil() > gone + 1; }));
    // Another one is plugged in: it takes over, at its place in time.
    m_sound.plugInMicrophone("other");
    const SoundPlayer other("other-feed", [](double t) { return test::toneAt(t, 1300); });
    const auto hearsOther = [&] { return amountAtEnd(1300, m_folder / "narration.wav") > 0.2; };
    EXPECT_TRUE(eventually(hearsOther));
    const double end = monotonicSeconds();
    const auto start = recorder.stop();
    ASSERT_TRUE(start);
    const auto sound = test::readSound(m_folder / "narration.wav").at(0);
    EXPECT_GT(amountOf(900, std::span(sound).first(kRate / 2)), 0.1);
    EXPECT_LT(amountOf(500, sound), 0.002);
    EXPECT_NEAR(static_cast<double>(sound.size()) / kRate, end - *start, 0.2);
}

TEST_F(SideRecorderTest, systemAudioFollowsTheDefaultOutput)
{
    const SoundPlayer speakers(
        test::PrivateSound::kSpeakers, [](double t) { return test::toneAt(t, 500); });
    const SoundPlayer headphones(
        test::PrivateSound::kHeadphones, [](double t) { return test::toneAt(t, 900); });
    const auto file = m_folder / "system.wav";
    SystemAudioWriter recorder;
    recorder.start(file, {});
    ASSERT_TRUE(eventually([&] { return amountAtEnd(500, file) > 0.3; }));
    m_sound.setDefaultOutput(test::PrivateSound::kHeadphones);
    EXPECT_TRUE(eventually([&] { return amountAtEnd(900, file) > 0.3; }));
    EXPECT_LT(amountAtEnd(500, file), 0.01);
    EXPECT_TRUE(recorder.stop());
}

class CameraTest : public SideRecorderTest {};

/// A picture that says its number, as a camera has it.
std::vector<std::uint8_t> numbered(int number, int width, int height)
{
    const auto picture = test::numberedFilmPicture(number, width, height);
    std::vector<std::uint8_t> bytes;
    for (const auto& plane : {picture.planes.y, picture.planes.cb, picture.planes.cr}) {
        for (int y = 0; y < plane.height; ++y) {
            bytes.insert(bytes.end(), plane.row(y), plane.row(y) + plane.width);
        }
    }
    return bytes;
}

TEST_F(CameraTest, picturesLieInTheirPlaceOnTheClock)
{
    struct Case {
        const char* name;
        int width, height, rate;
    };
    for (const auto& [name, width, height, rate] :
         {Case{"as wanted", 1280, 720, 30}, {"small and slow", 320, 180, 12}}) {
        SCOPED_TRACE(name);
        std::vector<double> taken(10000);
        const FakeCamera camera(
            "camera",
            {.width = width, .height = height, .rate = rate},
            [&, w = width, h = height](int index, double time) {
                taken.at(static_cast<std::size_t>(index)) = time;
                return numbered(index, w, h);
            });
        CameraRecorder recorder;
        recorder.start(m_folder / "webcam.mov", "no such camera");
        ASSERT_TRUE(eventually([&] { return recorder.startTime() && camera.shown() >= 20; }));
        const auto start = recorder.stop();
        ASSERT_TRUE(start);
        const auto frames = test::readFrames(m_folder / "webcam.mov");
        EXPECT_GE(frames.size(), 10U);
        int last = -1;
        for (const VideoFrame& frame : frames) {
            EXPECT_EQ(frame.size(), (VideoSize{1280, 720}));
            const int number = test::numberOf(frame);
            EXPECT_GT(number, last);
            last = number;
            EXPECT_NEAR(
                *start + frame.time(), taken.at(static_cast<std::size_t>(number)), 1.0 / 30);
        }
    }
}

TEST_F(CameraTest, compressedPicturesAreRead)
{
    const std::string file = (m_folder / "picture.jpg").string();
    ASSERT_TRUE(test::runFfmpeg(
        "-f lavfi -i color=0x808080:size=1280x720 -frames:v 1 -pix_fmt yuvj422p " + file));
    const std::string text = readFile(file);
    const FakeCamera camera("camera", {.form = test::FakeCameraForm::Jpeg}, [&](int index, double) {
        // Every third one is torn.
        return std::vector<std::uint8_t>(
            text.begin(), index % 3 == 2 ? text.begin() + 10 : text.end());
    });
    CameraRecorder recorder;
    recorder.start(m_folder / "webcam.mov", "camera");
    ASSERT_TRUE(eventually([&] { return recorder.startTime() && camera.shown() >= 12; }));
    EXPECT_TRUE(recorder.stop());
    const auto frames = test::readFrames(m_folder / "webcam.mov");
    ASSERT_GE(frames.size(), 4U);
    EXPECT_NEAR(frames.back().planes8().y.row(360)[640], 126, 3);
}

TEST_F(CameraTest, aCameraThatIsUnpluggedLeavesWhatItShowed)
{
    std::optional<FakeCamera> camera(
        std::in_place, "camera", FakeCamera::Format{}, [](int index, double) {
            return numbered(index, 1280, 720);
        });
    CameraRecorder recorder;
    recorder.start(m_folder / "webcam.mov", {});
    ASSERT_TRUE(eventually([&] { return recorder.startTime() && camera->shown() >= 10; }));
    camera.reset();
    ASSERT_TRUE(eventually([] { return !test::hasNode("camera"); }));
    EXPECT_TRUE(recorder.stop());
    EXPECT_GE(test::readFrames(m_folder / "webcam.mov").size(), 5U);
}

TEST_F(SideRecorderTest, whatTheApplicationPlaysIsHeardOnBothSides)
{
    const auto file = m_folder / "system.wav";
    SystemAudioWriter recorder;
    recorder.start(file, std::nullopt);
    const auto output = openSoundOutput();
    const auto left = test::tone(600, SoundOutput::kSampleRate, SoundOutput::kSampleRate * 3);
    const auto right = test::tone(900, SoundOutput::kSampleRate, left.size());
    const std::array<std::span<const float>, 2> sides{left, right};
    output->play(sides, {});
    output->finish({});
    recorder.stop();
    const auto heard = test::readSound(file);
    ASSERT_EQ(heard.size(), 2U);
    // Some second in the middle holds one tone on each side and nothing of the other.
    double most = 0;
    for (std::size_t at = 0; at + kRate <= heard[0].size(); at += kRate / 10) {
        const std::span one = std::span(heard[0]).subspan(at, kRate);
        const std::span other = std::span(heard[1]).subspan(at, kRate);
        const double own = std::min(amountOf(600, one), amountOf(900, other));
        const double wrong = std::max(amountOf(900, one), amountOf(600, other));
        most = std::max(most, own - wrong);
    }
    EXPECT_GT(most, 0.35);

    std::stop_source stop; // half a minute that nobody waits for
    stop.request_stop();
    const std::vector<float> silence(SoundOutput::kSampleRate * 30UL);
    output->play(std::array<std::span<const float>, 2>{silence, silence}, stop.get_token());
    output->finish(stop.get_token());
}

TEST_F(SideRecorderTest, aRecordingHasThemAllAndTheirOffsets)
{
    m_sound.plugInMicrophone("mic");
    const FakeCamera camera(
        "camera", {}, [](int index, double) { return numbered(index, 1280, 720); });
    const SoundPlayer speakers(
        test::PrivateSound::kSpeakers, [](double t) { return test::toneAt(t, 500); });
    ColourWindow window(display(), 100, 100, 80, 60);
    CaptureSession session(m_folder / "a.zento", *m_desktop);
    session.recordNarration = true;
    session.recordWebcam = true;
    session.recordSystemAudio = true;
    session.start();
    ASSERT_TRUE(eventually([&] { return session.frameCount() >= 1 && camera.shown() >= 10; }));
    const double now = speakers.playedUntil();
    ASSERT_TRUE(eventually([&] { return speakers.playedUntil() > now + 0.5; }));
    window.setColour(0xFFFFFF);
    ASSERT_TRUE(eventually([&] { return session.frameCount() >= 2; }));
    session.stop();
    const SessionBundle bundle = SessionBundle::load(m_folder / "a.zento");
    for (const auto& [file, offset] :
         {std::pair{bundle.narrationURL(), bundle.meta.narrationOffset},
          {bundle.webcamURL(), bundle.meta.webcamOffset},
          {bundle.systemAudioURL(), bundle.meta.systemAudioOffset}}) {
        EXPECT_TRUE(std::filesystem::exists(file)) << file;
        ASSERT_TRUE(offset) << file;
        EXPECT_GT(*offset, -1) << file;
        EXPECT_LT(*offset, bundle.meta.duration) << file;
    }
}

TEST_F(SideRecorderTest, withoutDevicesAndWithoutTheServiceTheRecordingGoesOn)
{
    for (const bool hasService : {true, false}) {
        SCOPED_TRACE(hasService);
        if (!hasService) {
            setenv("PIPEWIRE_REMOTE", "nowhere", 1); // NOLINT(concurrency-mt-unsafe): one thread
        }
        testing::internal::CaptureStderr();
        CaptureSession session(m_folder / "a.zento", *m_desktop);
        session.recordNarration = true;
        session.recordWebcam = true;
        session.recordSystemAudio = !hasService;
        session.start();
        ASSERT_TRUE(eventually([&] { return session.frameCount() >= 1; }));
        session.stop();
        unsetenv("PIPEWIRE_REMOTE"); // NOLINT(concurrency-mt-unsafe)
        const std::string told = testing::internal::GetCapturedStderr();
        EXPECT_THAT(
            told, testing::HasSubstr("warning: microphone unavailable: no microphone input"));
        EXPECT_THAT(told, testing::HasSubstr("warning: camera unavailable: no camera"));
        EXPECT_EQ(told.contains("warning: system audio unavailable: "), !hasService);
        const SessionBundle bundle = SessionBundle::load(m_folder / "a.zento");
        EXPECT_EQ(bundle.meta.narrationOffset, std::nullopt);
        EXPECT_FALSE(std::filesystem::exists(bundle.narrationURL()));
        EXPECT_FALSE(std::filesystem::exists(bundle.webcamURL()));
        EXPECT_FALSE(std::filesystem::exists(bundle.systemAudioURL()));
    }
}

} // namespace
} // namespace zento
