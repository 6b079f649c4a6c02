#include "Zento/Demo/DemoTracks.h"

#include "Zento/Demo/DemoMusic.h"
#include "Zento/Demo/Presenter.h"
#include "Zento/Demo/Voice.h"
#include "ZentoCore/Analyses.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoMedia/AacWriter.h"
#include "ZentoMedia/WavWriter.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zento {

namespace {

constexpr double kBreath = 0.15;              // seconds between two sentences
constexpr double kSecondsPerCharacter = 0.06; // of a sentence that nobody says
constexpr double kMusicBeyondFilm = 10;       // title and end card, and to spare

/// What is said, and the sound of it from the recording's epoch on.
struct Narration {
    std::vector<TranscriptSegment> transcript;
    Speech sound; // no samples without a voice
};

void put(const Speech& sentence, double start, Speech& narration)
{
    narration.sampleRate = sentence.sampleRate; // one voice, one rate
    narration.samples.resize(static_cast<std::size_t>(start * sentence.sampleRate));
    narration.samples.insert(
        narration.samples.end(), sentence.samples.begin(), sentence.samples.end());
}

Narration narrate(std::span<const SpokenLine> lines, double epoch, const std::stop_token& stop)
{
    Narration narration;
    double free = 0;
    for (const SpokenLine& line : lines) {
        const double start = std::max(line.time - epoch, free);
        double end = start + static_cast<double>(line.text.size()) * kSecondsPerCharacter;
        if (const auto sentence = speak(line.text, stop)) {
            put(*sentence, start, narration.sound);
            end = start + static_cast<double>(sentence->samples.size()) / sentence->sampleRate;
        }
        narration.transcript.push_back({.start = start, .end = end, .text = line.text});
        free = end + kBreath;
    }
    return narration;
}

void writeNarration(const std::filesystem::path& file, const Speech& sound)
{
    const std::array<std::span<const float>, 1> channels = {sound.samples};
    WavWriter writer(file, {.sampleRate = sound.sampleRate, .channelCount = 1});
    writer.append(channels);
    writer.finish();
}

void writeMusic(const std::filesystem::path& file, double seconds)
{
    const StereoSound music = demoMusic(seconds);
    AacWriter writer(file, {});
    writer.append(music.left, music.right);
    writer.finish();
}

} // namespace

void addDemoTracks(
    const std::filesystem::path& bundlePath,
    std::span<const SpokenLine> lines,
    double epoch,
    const std::stop_token& stop)
{
    SessionBundle bundle = SessionBundle::load(bundlePath);
    const Narration narration = narrate(lines, epoch, stop);
    writeFile(bundle.transcriptURL(), encodeTranscript(narration.transcript));
    if (!narration.sound.samples.empty()) {
        writeNarration(bundle.narrationURL(), narration.sound);
        bundle.meta.narrationOffset = 0;
    }
    writeMusic(bundle.musicURL(), bundle.meta.duration + kMusicBeyondFilm);
    writePresenter(bundle.webcamURL(), bundle.meta.duration, narration.transcript, stop);
    bundle.meta.webcamOffset = 0;
    bundle.writeMetadata();
}

} // namespace zento
