#include "ZentoMedia/SoundConverter.h"

#include "ZentoMedia/Ffmpeg/AudioConverter.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/mem.h>
}

#include <new>

namespace zento {

using namespace ffmpeg;

namespace {

/// A frame that refers to the block's samples.
FrameHandle frameOf(AudioBlock block, int sampleRate)
{
    auto frame = makeFrame();
    frame->format = AV_SAMPLE_FMT_FLTP;
    frame->sample_rate = sampleRate;
    frame->nb_samples = static_cast<int>(block.front().size());
    av_channel_layout_default(&frame->ch_layout, static_cast<int>(block.size()));
    // The frame frees the list, for which it has room for eight channels only.
    frame->extended_data =
        static_cast<std::uint8_t**>(av_calloc(block.size(), sizeof(std::uint8_t*)));
    if (frame->extended_data == nullptr)
        throw std::bad_alloc();
    for (std::size_t i = 0; i < block.size(); ++i) {
        // Only ever read: the library's type lacks a const.
        auto* samples = const_cast<float*>(block[i].data());
        frame->extended_data[i] = reinterpret_cast<std::uint8_t*>(samples);
    }
    return frame;
}

} // namespace

struct SoundConverter::State {
    AudioConverter converter;
};

SoundConverter::SoundConverter(const std::filesystem::path& path, int sampleRate, int channelCount)
    : m_state(std::make_unique<State>(
          AudioConverter(path, ChannelMix::AsStored, sampleRate, channelCount)))
{
}

SoundConverter::~SoundConverter() = default;
SoundConverter::SoundConverter(SoundConverter&&) noexcept = default;
SoundConverter& SoundConverter::operator=(SoundConverter&&) noexcept = default;

AudioBlock SoundConverter::convert(AudioBlock block, int sampleRate)
{
    return m_state->converter.convert(*frameOf(block, sampleRate));
}

} // namespace zento
