#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoMedia/TrackJoin.h"

#include <filesystem>
#include <optional>
#include <stop_token>
#include <vector>

/// The sound of a film: music that steps back for speech, the recorded tracks cut to the edit, and
/// the effects, made in memory at 44,100 samples per second in two channels.
///
/// Sample n is heard n / 44100 seconds into the film, its title card included; the times of a plan
/// begin after the title card. The music begins with the film.
///
/// Every file is read as it is mixed and only as far as it is heard, so that the film's two
/// channels, 350 KB a second, are all that is held. Sums are of floats, in the order music,
/// narration, system audio, effects; gains are computed in doubles and rounded once.
///
/// A file of a plan is a path, or, if there is none, a name inside the session's folder.
///
/// Threading: all functions from any thread. All throw `Error`, with the code `kCancelled` soon
/// after `stop` is requested.
namespace zento::AudioMixer {

/// Two channels of one length, full scale at ±1.
struct StereoSound {
    std::vector<float> left;
    std::vector<float> right;
    bool operator==(const StereoSound&) const = default;
};

/// Whether a film of the plan has sound at all.
bool needsSound(const EditPlan& plan);

/// The whole of a sound file at 44,100 samples per second. One channel goes to both at full level;
/// more than two are mixed down so that no peak rises; an empty file gives an empty sound.
/// Codes: `kNoSoundBuffer` if memory runs out, else as `AudioReader`.
StereoSound loadStereo(const std::filesystem::path& file, const std::stop_token& stop = {});

/// The sound of the first `duration` seconds of film, within ±1 by a soft limiter. Nothing if that
/// is less than a sample. A file of the plan that cannot be read fails it all.
std::optional<StereoSound>
mix(const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    const std::stop_token& stop = {});

/// The mix as `bins` peaks for a timeline, each of every fourth sample, [0, 1], not normalised.
/// Empty on any failure or without a sample. Never throws.
std::vector<float> waveform(
    const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    int bins,
    const std::stop_token& stop = {});

/// Writes the mix to `to`: AAC, 256 kbit/s. False, and no file, if there is not a sample to write.
/// `onProgress`: the share that is encoded; it stays at 0 while the sound is mixed, about a sixth
/// of the time.
bool renderSoundtrack(
    const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    const std::filesystem::path& to,
    const std::stop_token& stop = {},
    const ShareCallback& onProgress = {});

/// Joins a film's pictures and its sound as `joinTracks` does.
void mux(
    const std::filesystem::path& video,
    const std::filesystem::path& audio,
    const std::filesystem::path& to,
    const std::stop_token& stop = {},
    const ShareCallback& onProgress = {});

} // namespace zento::AudioMixer
