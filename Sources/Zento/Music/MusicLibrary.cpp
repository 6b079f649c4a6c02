#include "Zento/Music/MusicLibrary.h"

#include "Zento/Music/MusicSynth.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/ScratchFile.h"
#include "ZentoCore/UserFolders.h"
#include "ZentoCore/Uuid.h"
#include "ZentoMedia/AacWriter.h"

#include <algorithm>
#include <cstdint>

namespace zento::MusicLibrary {

namespace {

constexpr double kSeconds = 60;
constexpr int kSampleRate = 44100;
constexpr std::int64_t kBitRate = 192000;

void encode(
    const SynthesizedTrack& sound,
    const std::filesystem::path& to,
    const ProgressCallback& onProgress,
    const std::stop_token& stop)
{
    constexpr std::size_t kStep = kSampleRate;
    AacWriter writer(to, {.sampleRate = kSampleRate, .bitRate = kBitRate});
    const std::span<const float> left = sound.left;
    const std::span<const float> right = sound.right;
    for (std::size_t at = 0; at < left.size(); at += kStep) {
        if (stop.stop_requested())
            throw Error(ErrorCode::kCancelled, to.string() + " was cancelled");
        const std::size_t count = std::min(kStep, left.size() - at);
        writer.append(left.subspan(at, count), right.subspan(at, count));
        if (onProgress)
            onProgress(static_cast<double>(at + count) / static_cast<double>(left.size()));
    }
    writer.finish();
}

} // namespace

std::filesystem::path Track::url() const
{
    return dir() / (id + ".m4a");
}

bool Track::exists() const
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(url(), ignored);
}

const std::array<Track, 3>& all()
{
    static const std::array<Track, 3> kTracks = {
        Track{.id = "pulse", .name = "Pulse", .bpm = 120, .bass = {0, 0, 3, 5}, .hatEvery = 0.5},
        Track{.id = "glide", .name = "Glide", .bpm = 100, .bass = {0, -2, 0, 7}, .hatEvery = 1.0},
        Track{
            .id = "sprint", .name = "Sprint", .bpm = 128, .bass = {0, 5, 3, 10}, .hatEvery = 0.25}};
    return kTracks;
}

std::filesystem::path dir()
{
    return userDataFolder() / "Zento" / "Music";
}

std::filesystem::path
ensure(const Track& track, const ProgressCallback& onProgress, const std::stop_token& stop)
{
    const std::filesystem::path target = track.url();
    if (track.exists())
        return target;
    makeFolder(target.parent_path());
    // A name of its own: the same track may be in the making elsewhere.
    const ScratchFile part(besideTarget(target, "." + makeUuid() + ".m4a"));
    const TrackRecipe recipe = {.bpm = track.bpm, .bass = track.bass, .hatEvery = track.hatEvery};
    encode(synthesize(recipe, kSeconds), part.path(), onProgress, stop);
    replaceFile(part.path(), target);
    return target;
}

} // namespace zento::MusicLibrary
