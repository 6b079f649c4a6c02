#include "ZentoRender/AudioMixer.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/AudioReader.h"
#include "ZentoRender/MusicLevel.h"
#include "ZentoRender/SoundEffects.h"
#include "ZentoRender/SoundFormat.h"
#include "ZentoRender/TrackOverlay.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <span>
#include <stdexcept>
#include <string>
#include <system_error>

namespace zento::AudioMixer {

namespace {

/// Samples between two looks at the stop token: a few milliseconds of work.
constexpr std::size_t kStride = 1 << 16;

constexpr double kClickGain = 0.45;
constexpr double kWhooshGain = 0.22;

enum class Reading { GoOn, Enough };

void checkStop(const std::stop_token& stop)
{
    if (stop.stop_requested())
        throw Error(ErrorCode::kCancelled, "the sound was cancelled");
}

/// `take(block, first)` for every block of a file, `first` being the place of its first sample,
/// until it has enough.
template <typename Take>
void readBlocks(AudioReader& reader, const std::stop_token& stop, Take take)
{
    std::int64_t first = 0;
    checkStop(stop);
    while (const auto block = reader.next()) {
        checkStop(stop);
        if (take(*block, first) == Reading::Enough)
            return;
        first += std::ssize(block->front());
    }
}

std::filesystem::path located(const std::string& file, const std::filesystem::path& bundle)
{
    std::error_code ignored;
    return std::filesystem::exists(file, ignored) ? std::filesystem::path(file) : bundle / file;
}

AudioReader openTrack(const std::string& file, const std::filesystem::path& bundle)
{
    return AudioReader(located(file, bundle), ChannelMix::Stereo, kSoundRate);
}

/// What remains of a block from sample `start` of the track on.
struct Rest {
    std::span<const float> left;
    std::span<const float> right;
};

Rest restOf(AudioBlock block, std::int64_t first, std::int64_t start)
{
    const auto skipped = static_cast<std::size_t>(
        std::clamp(start - first, std::int64_t{0}, std::ssize(block.front())));
    return {block.front().subspan(skipped), block.back().subspan(skipped)};
}

void addMusic(
    StereoSound& film,
    const MusicPlan& music,
    double titleOffset,
    double duration,
    AudioReader reader,
    const std::stop_token& stop)
{
    MusicLevel level(music, titleOffset, duration);
    const std::int64_t start = sampleIndex(music.sourceOffset);
    std::vector<float> factors;
    std::size_t done = 0;
    if (start < 0) { // what lies before the file is silent, but the film's clock runs
        done = std::min(static_cast<std::size_t>(-start), film.left.size());
        factors.resize(done);
        if (level.next(factors) < done)
            return;
    }
    readBlocks(reader, stop, [&](AudioBlock block, std::int64_t first) {
        const Rest rest = restOf(block, first, start);
        const std::size_t wanted = std::min(rest.left.size(), film.left.size() - done);
        factors.resize(wanted);
        const std::size_t count = level.next(factors);
        for (std::size_t i = 0; i < count; ++i) {
            film.left[done + i] += factors[i] * rest.left[i];
            film.right[done + i] += factors[i] * rest.right[i];
        }
        done += count;
        return count < wanted || done == film.left.size() ? Reading::Enough : Reading::GoOn;
    });
}

void addTrack(
    StereoSound& film, const TrackOverlay& overlay, AudioReader reader, const std::stop_token& stop)
{
    const std::int64_t end = overlay.end();
    readBlocks(reader, stop, [&](AudioBlock block, std::int64_t first) {
        overlay.add(block, first, film.left, film.right);
        return first + std::ssize(block.front()) < end ? Reading::GoOn : Reading::Enough;
    });
}

void addEffect(StereoSound& film, std::span<const float> effect, double gain, std::int64_t start)
{
    const auto length = std::ssize(film.left);
    const std::int64_t begin = std::max<std::int64_t>(0, -start);
    const std::int64_t end = std::min(std::ssize(effect), length - start);
    const auto factor = static_cast<float>(gain);
    for (std::int64_t k = begin; k < end; ++k) {
        const float sample = factor * effect[static_cast<std::size_t>(k)];
        const auto place = static_cast<std::size_t>(start + k);
        film.left[place] += sample;
        film.right[place] += sample;
    }
}

void addEffects(StereoSound& film, const std::vector<SFXCue>& cues, double titleOffset)
{
    for (const SFXCue& cue : cues) {
        const std::int64_t start = sampleIndex(titleOffset + cue.tOut);
        if (cue.kind == "click")
            addEffect(film, clickSFX(), kClickGain * cue.gain, start);
        else if (cue.kind == "whoosh")
            addEffect(film, whooshSFX(), kWhooshGain * cue.gain, start);
    }
}

/// Nothing clips; levels near 1 are compressed rather than cut.
void limit(std::vector<float>& channel, const std::stop_token& stop)
{
    for (std::size_t i = 0; i < channel.size(); ++i) {
        if (i % kStride == 0)
            checkStop(stop);
        if (channel[i] != 0)
            channel[i] = std::tanh(channel[i]);
    }
}

StereoSound silence(double samples)
{
    try {
        constexpr double kMostSamples = 0x1p62; // a number still, and more than a vector holds
        const auto length = static_cast<std::size_t>(std::min(samples, kMostSamples));
        return {std::vector<float>(length), std::vector<float>(length)};
    } catch (const std::exception&) { // no memory, or more than there can be
        throw Error(
            ErrorCode::kNoSoundBuffer,
            "There is not enough memory for " + std::to_string(samples / kSoundRate)
                + " seconds of sound");
    }
}

} // namespace

bool needsSound(const EditPlan& plan)
{
    return plan.music || !plan.sfx.empty() || plan.narration || plan.systemAudio;
}

StereoSound loadStereo(const std::filesystem::path& file, const std::stop_token& stop)
{
    AudioReader reader(file, ChannelMix::Stereo, kSoundRate);
    StereoSound sound;
    try {
        sound.left.reserve(reader.expectedLength());
        sound.right.reserve(reader.expectedLength());
        readBlocks(reader, stop, [&](AudioBlock block, std::int64_t /*first*/) {
            sound.left.insert(sound.left.end(), block.front().begin(), block.front().end());
            sound.right.insert(sound.right.end(), block.back().begin(), block.back().end());
            return Reading::GoOn;
        });
    } catch (const std::bad_alloc&) {
        throw Error(
            ErrorCode::kNoSoundBuffer,
            "There is not enough memory for the sound of " + file.string());
    }
    return sound;
}

std::optional<StereoSound>
mix(const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    const std::stop_token& stop)
{
    const double samples = std::trunc(duration * kSoundRate);
    if (!(samples >= 1))
        return {};
    checkStop(stop);
    const double titleOffset = plan.titleCard ? std::fmax(0, plan.titleCard->duration) : 0;
    StereoSound film = silence(samples);
    if (plan.music)
        addMusic(
            film, *plan.music, titleOffset, duration, openTrack(plan.music->file, bundle), stop);
    for (const auto* track : {&plan.narration, &plan.systemAudio})
        if (*track)
            addTrack(
                film,
                TrackOverlay(**track, plan.timeRemap, titleOffset),
                openTrack((*track)->file, bundle),
                stop);
    addEffects(film, plan.sfx, titleOffset);
    limit(film.left, stop);
    limit(film.right, stop);
    return film;
}

std::vector<float> waveform(
    const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    int bins,
    const std::stop_token& stop)
{
    if (bins < 1)
        return {};
    try {
        const auto sound = mix(plan, duration, bundle, stop);
        if (!sound)
            return {};
        const auto count = static_cast<std::size_t>(bins);
        const std::size_t length = sound->left.size();
        std::vector<float> peaks(count, 0);
        for (std::size_t bin = 0; bin < count; ++bin) {
            const std::size_t from = length * bin / count;
            const std::size_t to = std::max(length * (bin + 1) / count, from + 1);
            for (std::size_t i = from; i < to; i += 4)
                peaks[bin] =
                    std::max({peaks[bin], std::abs(sound->left[i]), std::abs(sound->right[i])});
        }
        return peaks;
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace zento::AudioMixer
