// The last steps of a film's sound: from the mix to a file, and from there into the film.
#include "ZentoCore/Error.h"
#include "ZentoMedia/AacWriter.h"
#include "ZentoRender/AudioMixer.h"
#include "ZentoRender/SoundFormat.h"

#include <algorithm>
#include <span>

namespace zento::AudioMixer {

bool renderSoundtrack(
    const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    const std::filesystem::path& to,
    const std::stop_token& stop,
    const ShareCallback& onProgress)
{
    const auto sound = mix(plan, duration, bundle, stop);
    if (!sound)
        return false;
    AacWriter writer(to, {.sampleRate = kSoundRate, .bitRate = 256000});
    constexpr std::size_t kStride = 1 << 14; // takes some milliseconds to encode
    const std::size_t length = sound->left.size();
    for (std::size_t done = 0; done < length;) {
        if (stop.stop_requested())
            throw Error(ErrorCode::kCancelled, to.string() + " was cancelled");
        const std::size_t count = std::min(kStride, length - done);
        writer.append(
            std::span(sound->left).subspan(done, count),
            std::span(sound->right).subspan(done, count));
        done += count;
        if (onProgress)
            onProgress(static_cast<double>(done) / static_cast<double>(length));
    }
    writer.finish();
    return true;
}

void mux(
    const std::filesystem::path& video,
    const std::filesystem::path& audio,
    const std::filesystem::path& to,
    const std::stop_token& stop,
    const ShareCallback& onProgress)
{
    joinTracks(video, audio, to, stop, onProgress);
}

} // namespace zento::AudioMixer
