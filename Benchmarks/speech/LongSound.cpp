#include "LongSound.h"

#include "Material.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Music/MusicLibrary.h"
#include "Zento/Music/MusicSynth.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/NarrationTranscriber.h"
#include "ZentoMedia/WavWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <vector>

namespace zento {
namespace {

constexpr int kMusicRate = 44100;
constexpr double kMinute = 60;

double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// The most memory in use since the last call, in megabytes.
double takePeakMegabytes()
{
    std::ifstream status("/proc/self/status");
    double kilobytes = 0;
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            kilobytes = std::stod(line.substr(6));
    std::ofstream("/proc/self/clear_refs") << "5";
    return kilobytes / 1024;
}

std::size_t wordsIn(const std::string& text)
{
    return text.empty() ? 0 : static_cast<std::size_t>(std::ranges::count(text, ' ')) + 1;
}

void transcribe(const char* name, const std::filesystem::path& file, double minutes)
{
    takePeakMegabytes();
    const double begin = processorSeconds();
    const auto segments = NarrationTranscriber::transcribe(file, 0, minutes * kMinute);
    const double took = processorSeconds() - begin;
    std::size_t words = 0;
    double covered = 0;
    for (const TranscriptSegment& segment : segments) {
        words += wordsIn(segment.text);
        covered += segment.end - segment.start;
    }
    std::printf(
        "  %-30s %5.1f min in %6.1f s, %.0f MB; %zu segments over %.1f s, %.1f words a minute\n",
        name,
        minutes,
        took,
        takePeakMegabytes(),
        segments.size(),
        covered,
        static_cast<double>(words) / minutes);
    for (std::size_t i = 0; i < std::min<std::size_t>(segments.size(), 5); ++i)
        std::printf(
            "      %.1f-%.1f “%s”\n", segments[i].start, segments[i].end, segments[i].text.c_str());
    std::fflush(stdout);
}

/// The tracks that the program makes, in turn.
void writeMusic(const std::filesystem::path& file, double minutes)
{
    WavWriter writer(file, {.sampleRate = kMusicRate, .channelCount = 2});
    for (int i = 0; i < static_cast<int>(minutes); ++i) {
        const auto& track = MusicLibrary::all().at(static_cast<std::size_t>(i) % 3);
        const auto sound =
            synthesize({.bpm = track.bpm, .bass = track.bass, .hatEvery = track.hatEvery}, kMinute);
        writer.append(std::array<std::span<const float>, 2>{sound.left, sound.right});
    }
    writer.finish();
}

/// The voice in the channel given, the others as quiet as a cable.
void writeVoice(const std::filesystem::path& file, const SpokenMaterial& voice, std::size_t channel)
{
    constexpr std::size_t kChannels = 6;
    const std::vector<float> silent(voice.sound.size());
    std::array<std::span<const float>, kChannels> channels;
    channels.fill(silent);
    channels.at(channel) = voice.sound;
    WavWriter writer(file, {.sampleRate = kSpeechRate, .channelCount = kChannels});
    writer.append(channels);
    writer.finish();
}

} // namespace

void measureLongSounds(double minutes)
{
    const test::TemporaryFolder folder;
    const std::filesystem::path file = folder / "narration.wav";
    writeMusic(file, minutes);
    transcribe("music", file, minutes);
    const SpokenMaterial voice = shownProgram(Room::Quiet);
    const double voiceMinutes = static_cast<double>(voice.sound.size()) / kSpeechRate / kMinute;
    for (const std::size_t channel : {0UZ, 2UZ, 3UZ}) {
        writeVoice(file, voice, channel);
        const std::string name = "a voice in channel " + std::to_string(channel + 1) + " of six";
        transcribe(name.c_str(), file, voiceMinutes);
    }
}

} // namespace zento
