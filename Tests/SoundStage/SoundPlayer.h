#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zento::test {

/// Plays to an output what a function of the time says: at every sample's own time, in seconds of
/// CLOCK_MONOTONIC, or a cycle of the service's later (2.7 ms), in all channels alike.
///
/// Threading: the function runs on the sound service's real-time thread.
class SoundPlayer {
public:
    using Sound = std::function<float(double time)>;

    /// Returns when it plays.
    SoundPlayer(const std::string& output, Sound sound);
    ~SoundPlayer();

    /// What lies before has been played.
    double playedUntil() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// A tone of `hertz`, of an amplitude of 0.5.
float toneAt(double time, double hertz);

/// Beeps of 1 kHz and `kBeepSeconds` at every whole `period`; silence between them.
inline constexpr double kBeepSeconds = 0.05;
float beepsAt(double time, double period);

/// Where beeps begin that are there from end to end, in seconds of a sound that was recorded. A
/// busy machine swallows parts of some.
std::vector<double> wholeBeeps(const std::vector<float>& sound, double rate);

} // namespace zento::test
