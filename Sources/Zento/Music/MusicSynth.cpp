#include "Zento/Music/MusicSynth.h"

#include "ZentoCore/PortableMath.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <span>

namespace zento {

namespace {

constexpr double kRate = 44100;
constexpr std::size_t kKickLength = 12348; // samples: 0.28 s
constexpr std::size_t kHatLength = 2205;   // 0.05 s
constexpr std::size_t kFadeLength = 17640; // 0.4 s

std::size_t sampleAt(double seconds)
{
    return static_cast<std::size_t>(seconds * kRate);
}

double secondsAt(std::size_t sample)
{
    return static_cast<double>(sample) / kRate;
}

/// Adds as much of a sound as there is room for.
void add(std::span<const float> sound, std::size_t start, std::vector<float>& channel)
{
    const std::size_t end = std::min(start + sound.size(), channel.size());
    for (std::size_t i = start; i < end; ++i)
        channel[i] += sound[i - start];
}

/// A drum: its pitch falls from 172 to 52 Hz.
std::vector<float> makeKick()
{
    std::vector<float> kick(kKickLength);
    for (std::size_t i = 0; i < kick.size(); ++i) {
        const double s = secondsAt(i);
        const double turns = s * (portable::exp(-18 * s) * 120 + 52);
        kick[i] = static_cast<float>(
            portable::sin(turns * 2 * std::numbers::pi) * portable::exp(-16 * s) * 0.8);
    }
    return kick;
}

void addKicks(double beat, double seconds, SynthesizedTrack& track)
{
    const std::vector<float> kick = makeKick();
    for (double t = 0; t < seconds - 0.5; t += beat) {
        add(kick, sampleAt(t), track.left);
        add(kick, sampleAt(t), track.right);
    }
}

/// Bursts of bright noise, no two alike: the noise runs on from one to the next.
void addHats(double beat, double hatEvery, double seconds, SynthesizedTrack& track)
{
    std::uint32_t state = 0x9e3779b9;
    std::vector<float> decay(kHatLength);
    for (std::size_t i = 0; i < decay.size(); ++i)
        decay[i] = static_cast<float>(portable::exp(-secondsAt(i) * 60) * 0.16);
    for (double t = beat * 0.5; t < seconds - 0.2; t += beat * hatEvery) {
        float low = 0;
        const std::size_t start = sampleAt(t);
        for (std::size_t i = 0; i < kHatLength; ++i) {
            state = state * 1664525U + 1013904223U;
            const float noise =
                static_cast<float>(static_cast<std::int32_t>(state)) * 4.656613e-10F;
            const float sound = (noise - low) * decay[i];
            if (start + i < track.left.size()) {
                track.left[start + i] += sound * 0.9F;
                track.right[start + i] += sound * 1.1F;
            }
            low = low * 0.7F + noise * 0.3F;
        }
    }
}

/// A note of a softened saw tooth.
std::vector<float> makeBassNote(double semitones, double beat)
{
    const double frequency = 55 * portable::exp2(semitones / 12);
    std::vector<float> note(sampleAt(beat * 0.9));
    double soft = 0;
    for (std::size_t i = 0; i < note.size(); ++i) {
        const double s = secondsAt(i);
        const double turns = frequency * s;
        const double saw = (2 * (turns - std::floor(turns)) - 1) * 0.08;
        soft = soft * 0.92 + saw;
        note[i] = static_cast<float>(portable::exp(-2.2 * s) * std::min(40 * s, 1.0) * soft * 0.5);
    }
    return note;
}

void addBass(double beat, const std::vector<double>& line, double seconds, SynthesizedTrack& track)
{
    std::vector<std::vector<float>> notes;
    for (const double semitones : line)
        notes.push_back(makeBassNote(semitones, beat));
    double t = 0;
    for (std::size_t k = 0; t < seconds - 0.5; t = static_cast<double>(++k) * beat) {
        add(notes[k % notes.size()], sampleAt(t), track.left);
        add(notes[k % notes.size()], sampleAt(t), track.right);
    }
}

/// Fades the ends and keeps the sum within full scale.
void master(std::vector<float>& channel)
{
    for (std::size_t i = 0; i < channel.size(); ++i) {
        double fade = 1;
        if (i < kFadeLength)
            fade = static_cast<double>(i) / kFadeLength;
        if (const std::size_t left = channel.size() - i; left < kFadeLength)
            fade = static_cast<double>(left) / kFadeLength;
        channel[i] =
            static_cast<float>(fade * portable::tanh(static_cast<double>(channel[i]) * 0.9));
    }
}

} // namespace

SynthesizedTrack synthesize(const TrackRecipe& recipe, double seconds)
{
    const double beat = 60 / recipe.bpm;
    const std::size_t count = sampleAt(seconds);
    SynthesizedTrack track{std::vector<float>(count), std::vector<float>(count)};
    addKicks(beat, seconds, track);
    addHats(beat, recipe.hatEvery, seconds, track);
    addBass(beat, recipe.bass, seconds, track);
    master(track.left);
    master(track.right);
    return track;
}

} // namespace zento
