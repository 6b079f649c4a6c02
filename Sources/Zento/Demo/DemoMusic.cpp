#include "Zento/Demo/DemoMusic.h"

#include "Zento/Demo/Random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace zento {

namespace {

constexpr double kRate = 44100; // samples per second
constexpr double kBeat = 60.0 / 112;
constexpr double kLoudness = 1.5; // brings the loudest sample of all voices to 0.68
constexpr int kBeatsPerBar = 4;

/// A chord as MIDI notes, the bass first.
using Chord = std::array<int, 4>;
constexpr std::array<Chord, 4> kBars = {{
    {45, 60, 64, 67}, // A minor seventh
    {41, 57, 60, 64}, // F major seventh
    {48, 55, 60, 64}, // C
    {43, 59, 62, 66}, // G major seventh
}};

double frequency(int note)
{
    return 440 * std::exp2((note - 69) / 12.0);
}

/// One voice's sample, `t` seconds after its note began.
double sine(double hertz, double t)
{
    return std::sin(2 * std::numbers::pi * hertz * t);
}

/// A place between the speakers: -1 is left, 1 is right.
struct Note {
    double start = 0;    // seconds into the loop
    double duration = 0; // seconds until it is silent
    double gain = 1;
    double pan = 0;
};

/// The loop in the making. What rings on beyond its end is heard at its start.
class Loop {
public:
    Loop()
    {
        const auto length = static_cast<std::size_t>(kBars.size() * kBeatsPerBar * kBeat * kRate);
        m_sound.left.resize(length);
        m_sound.right.resize(length);
    }

    /// `voice`: its sample at a number of seconds after the note's start.
    template <typename Voice>
    void play(const Note& note, Voice voice)
    {
        const auto first = static_cast<std::size_t>(note.start * kRate);
        const auto count = static_cast<std::size_t>(note.duration * kRate);
        for (std::size_t i = 0; i < count; ++i) {
            const double sample = kLoudness * note.gain * voice(static_cast<double>(i) / kRate);
            const std::size_t at = (first + i) % m_sound.left.size();
            m_sound.left[at] += static_cast<float>(sample * (1 - note.pan) / 2);
            m_sound.right[at] += static_cast<float>(sample * (1 + note.pan) / 2);
        }
    }

    const StereoSound& sound() const { return m_sound; }

private:
    StereoSound m_sound;
};

/// Swells in and out over the bar and laps a little over the next one.
void playPad(Loop& loop, double start, const Chord& chord)
{
    constexpr double kLength = kBeatsPerBar * kBeat * 1.15;
    for (std::size_t i = 1; i < chord.size(); ++i) {
        const double hertz = frequency(chord[i]);
        const Note note = {start, kLength, 0.085, i == 1 ? -0.5 : i == 2 ? 0.5 : 0};
        loop.play(note, [hertz](double t) {
            const double swell = std::sin(std::numbers::pi * t / kLength);
            return swell
                   * (sine(hertz, t) + 0.5 * sine(hertz * 1.003, t) + 0.2 * sine(2 * hertz, t));
        });
    }
}

void playBass(Loop& loop, double start, int note)
{
    const double hertz = frequency(note);
    for (const double beat : {0.0, 1.5, 2.0, 3.5}) {
        loop.play({start + beat * kBeat, 0.5, 0.22, 0}, [hertz](double t) {
            const double attack = std::min(t / 0.008, 1.0);
            return attack * std::exp(-5 * t) * (sine(hertz, t) + 0.3 * sine(2 * hertz, t));
        });
    }
}

/// The chord's notes as eighths, going up and down between the speakers.
void playPlucks(Loop& loop, double start, const Chord& chord)
{
    constexpr std::array<std::size_t, 8> kOrder = {1, 2, 3, 2, 1, 3, 2, 3};
    for (std::size_t i = 0; i < kOrder.size(); ++i) {
        const double hertz = frequency(chord[kOrder[i]] + 12);
        const Note note = {
            start + static_cast<double>(i) * kBeat / 2, 0.6, 0.11, i % 2 == 0 ? -0.6 : 0.6};
        loop.play(note, [hertz](double t) {
            const double attack = std::min(t / 0.003, 1.0);
            return attack
                   * (std::exp(-7 * t) * sine(hertz, t)
                      + 0.4 * std::exp(-14 * t) * sine(3 * hertz, t));
        });
    }
}

void playDrums(Loop& loop, double start, Random& random)
{
    for (int beat = 0; beat < kBeatsPerBar; ++beat) {
        const double on = start + beat * kBeat;
        loop.play({on, 0.25, 0.5, 0}, [](double t) { // a drum whose pitch falls from 130 to 45 Hz
            const double turns = 45 * t + (130 - 45) / 30.0 * (1 - std::exp(-30 * t));
            return std::exp(-14 * t) * std::sin(2 * std::numbers::pi * turns);
        });
        loop.play({on + kBeat / 2, 0.05, 0.05, 0.3}, [&random](double t) {
            return std::exp(-90 * t) * random.between(-1, 1);
        });
    }
}

StereoSound loopOnce()
{
    Loop loop;
    Random random(7);
    double start = 0;
    for (const Chord& chord : kBars) {
        playPad(loop, start, chord);
        playBass(loop, start, chord.front());
        playPlucks(loop, start, chord);
        playDrums(loop, start, random);
        start += kBeatsPerBar * kBeat;
    }
    return loop.sound();
}

std::vector<float> repeated(const std::vector<float>& loop, std::size_t count)
{
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = loop[i % loop.size()];
    return samples;
}

} // namespace

StereoSound demoMusic(double seconds)
{
    const StereoSound loop = loopOnce();
    const auto count = static_cast<std::size_t>(std::max(seconds, 0.0) * kRate);
    return {repeated(loop.left, count), repeated(loop.right, count)};
}

} // namespace zento
