#include "ZentoMedia/AudioReader.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/AudioConverter.h"
#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/Ffmpeg/Input.h"
#include "ZentoMedia/Ffmpeg/InputStream.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace zento {

using namespace ffmpeg;

namespace {

AVStream* chooseSound(AVFormatContext& input, const std::filesystem::path& path)
{
    AVStream* chosen = chooseTrack(input, isSound);
    if (chosen == nullptr)
        throw Error(ErrorCode::kReadingFailed, "no sound in " + path.string());
    return chosen;
}

} // namespace

struct AudioReader::State {
    enum class Phase { Reading, Draining, Ended };

    std::filesystem::path path;
    ChannelMix mix;
    std::unique_ptr<InputStream> bytes; // null for a file; outlives `input`
    InputHandle input;
    AVStream* stream = nullptr;
    CodecHandle codec;
    std::optional<AudioConverter> converter; // once a frame has told what the sound is
    PacketHandle packet = makePacket();
    FrameHandle frame = makeFrame();
    Phase phase = Phase::Reading;
    bool hasPackets = false;
    bool isFirstWaiting = false; // `frame` holds the first one

    State(
        std::filesystem::path itsPath,
        ChannelMix channelMix,
        std::unique_ptr<InputStream> itsBytes = nullptr)
        : path(std::move(itsPath))
        , mix(channelMix)
        , bytes(std::move(itsBytes))
        , input(bytes ? openInput(bytes->context(), path) : openInput(path))
        , stream(chooseSound(*input, path))
        , codec(makeDecoder(*stream, path))
    {
        openDecoder(*codec, path);
    }

    void readFirst(std::optional<int> sampleRate);
    bool decode();
    bool receive();
    void feed();
};

AudioReader::AudioReader(
    const std::filesystem::path& path, ChannelMix mix, std::optional<int> sampleRate)
    : m_state(std::make_unique<State>(path, mix))
{
    m_state->readFirst(sampleRate);
}

AudioReader::AudioReader(
    ByteSource source, const std::string& name, ChannelMix mix, std::optional<int> sampleRate)
{
    // Of the source, which the library tells as one of its own.
    const auto failure = std::make_shared<std::exception_ptr>();
    const auto watched = [failure, from = std::move(source)](std::span<char> into) {
        try {
            return from(into);
        } catch (...) {
            *failure = std::current_exception();
            throw;
        }
    };
    auto bytes = std::make_unique<InputStream>(watched);
    try {
        m_state = std::make_unique<State>(name, mix, std::move(bytes));
        m_state->readFirst(sampleRate);
    } catch (const Error&) {
        if (*failure)
            std::rethrow_exception(*failure);
        throw;
    }
}

AudioReader::~AudioReader() = default;
AudioReader::AudioReader(AudioReader&&) noexcept = default;
AudioReader& AudioReader::operator=(AudioReader&&) noexcept = default;

int AudioReader::sampleRate() const
{
    return m_state->converter->sampleRate();
}

int AudioReader::channelCount() const
{
    return m_state->converter->channelCount();
}

std::size_t AudioReader::expectedLength() const
{
    const double told = m_state->input->duration > 0 ? static_cast<double>(m_state->input->duration)
                                                           / static_cast<double>(AV_TIME_BASE)
                                                     : 0;
    // No codec for music stays below this; a header that promises more than the file can hold is
    // not to be believed.
    constexpr double kFewestBytesPerSecond = 500;
    std::error_code unknown;
    const auto bytes = std::filesystem::file_size(m_state->path, unknown);
    const double most = unknown ? 0 : static_cast<double>(bytes) / kFewestBytesPerSecond;
    return static_cast<std::size_t>(std::min(told, most) * sampleRate());
}

std::optional<AudioBlock> AudioReader::next()
{
    State& state = *m_state;
    while (std::exchange(state.isFirstWaiting, false) || state.decode()) {
        const AudioBlock block = state.converter->convert(*state.frame);
        if (!block.front().empty())
            return block;
    }
    const AudioBlock rest = state.converter->drain();
    if (rest.empty() || rest.front().empty())
        return {};
    return rest;
}

/// What a track declares need not be what its decoder makes of it: the first frame tells.
void AudioReader::State::readFirst(std::optional<int> sampleRate)
{
    isFirstWaiting = decode();
    if (!isFirstWaiting && hasPackets)
        throw Error(ErrorCode::kReadingFailed, path.string() + " holds no sound that can be read");
    const int ownRate = isFirstWaiting ? frame->sample_rate : stream->codecpar->sample_rate;
    const int ownChannels =
        isFirstWaiting ? frame->ch_layout.nb_channels : stream->codecpar->ch_layout.nb_channels;
    converter.emplace(path, mix, sampleRate.value_or(ownRate), std::max(ownChannels, 0));
}

/// Decodes the next frame into `frame`. False at the end.
bool AudioReader::State::decode()
{
    while (phase != Phase::Ended) {
        if (receive())
            return true;
        if (phase == Phase::Reading)
            feed();
    }
    return false;
}

bool AudioReader::State::receive()
{
    const int received = avcodec_receive_frame(codec.get(), frame.get());
    if (received >= 0)
        return frame->nb_samples > 0 && frame->sample_rate > 0 && frame->ch_layout.nb_channels > 0;
    // A frame that does not decode is left out; while draining nothing comes after it.
    if (phase == Phase::Draining)
        phase = Phase::Ended;
    return false;
}

void AudioReader::State::feed()
{
    if (readPacket(*input, stream->index, *packet)) {
        hasPackets = true;
        avcodec_send_packet(codec.get(), packet.get()); // a damaged packet is passed over
        return;
    }
    phase = Phase::Draining;
    avcodec_send_packet(codec.get(), nullptr);
}

} // namespace zento
