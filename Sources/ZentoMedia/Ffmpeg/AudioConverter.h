#pragma once

#include "ZentoMedia/AudioReader.h"
#include "ZentoMedia/Ffmpeg/Handles.h"

#include <filesystem>
#include <vector>

namespace zento::ffmpeg {

/// Turns decoded sound of any sample format, rate and channels into planes of floats. The sound
/// may change its format on the way; what comes out stays as it began.
///
/// Threading: used by one thread at a time.
class AudioConverter {
public:
    /// `rate`: samples a second of what comes out. `path` is for messages.
    AudioConverter(std::filesystem::path path, ChannelMix mix, int rate, int channelCount);

    int sampleRate() const { return m_rate; }
    int channelCount() const { return static_cast<int>(m_planes.size()); }

    /// What the frame gives; of any length, also none. Good until the next call.
    /// Throws `Error` with the code `kNoStereoBuffer` for a format that cannot be converted.
    AudioBlock convert(const AVFrame& frame);

    /// What was held back for the resampling of samples that will not come.
    AudioBlock drain();

private:
    struct Format {
        int sampleFormat = AV_SAMPLE_FMT_NONE;
        int rate = 0;
        int channelCount = 0;
        std::uint64_t places = 0; // a bit a channel; 0: unknown

        bool operator==(const Format&) const = default;
    };

    static Format formatOf(const AVFrame& frame);
    void prepare(const AVFrame& frame);
    void append(const AVFrame* frame);
    AudioBlock block();

    std::filesystem::path m_path;
    ChannelMix m_mix;
    int m_rate;
    ResamplerHandle m_resampler;
    Format m_input; // what `m_resampler` was made for
    std::vector<std::vector<float>> m_planes;
    std::vector<std::span<const float>> m_views;
    std::size_t m_length = 0; // samples in use of every plane
};

} // namespace zento::ffmpeg
