#include "ZentoMedia/MovieTimes.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/Input.h"

#include <algorithm>

namespace zento {

std::vector<double> pictureTimes(const std::filesystem::path& path)
{
    const ffmpeg::InputHandle input = ffmpeg::openInput(path);
    AVStream* const track = ffmpeg::chooseTrack(*input, ffmpeg::isPictures);
    if (track == nullptr)
        throw Error(ErrorCode::kNoVideoTrack, path.string() + " holds no pictures");
    std::vector<double> times;
    const int count = avformat_index_get_entries_count(track);
    for (int i = 0; i < count; ++i) {
        const AVIndexEntry* const entry = avformat_index_get_entry(track, i);
        times.push_back(static_cast<double>(entry->timestamp) * av_q2d(track->time_base));
    }
    std::ranges::sort(times);
    const double first = times.empty() ? 0 : times.front();
    for (double& time : times)
        time -= first;
    return times;
}

} // namespace zento
