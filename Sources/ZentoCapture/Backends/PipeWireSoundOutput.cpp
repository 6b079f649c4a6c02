#include "ZentoCapture/Backends/PipeWireLoop.h"
#include "ZentoCapture/SoundOutput.h"
#include "ZentoCore/Error.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

namespace zento {

namespace {

constexpr std::size_t kChannels = 2;
constexpr std::uint64_t kRoom = SoundOutput::kSampleRate; // frames
constexpr std::chrono::milliseconds kLookEvery{20};

/// A ring of stereo frames. The real-time thread takes, the player's thread puts.
class PipeWireSoundOutput final : public SoundOutput {
public:
    PipeWireSoundOutput();
    ~PipeWireSoundOutput() override;

    void play(const AudioBlock& sound, const std::stop_token& stop) override;
    void finish(const std::stop_token& stop) override;

private:
    static void process(void* self);
    void fill(pw_buffer& buffer);

    std::vector<float> m_ring = std::vector<float>(kRoom * kChannels);
    std::atomic<std::uint64_t> m_put = 0;   // frames since the beginning
    std::atomic<std::uint64_t> m_taken = 0; // frames
    PipeWireLoop m_loop{"sound.output"};
    pw_stream_events m_events{};
    spa_hook m_listener{};
    pw_stream* m_stream = nullptr;
};

pw_properties* streamProperties()
{
    pw_properties* const properties = pw_properties_new(nullptr, nullptr);
    pw_properties_set(properties, PW_KEY_APP_NAME, "Zento");
    pw_properties_set(properties, PW_KEY_NODE_NAME, "zento-preview");
    pw_properties_set(properties, PW_KEY_MEDIA_TYPE, "Audio");
    pw_properties_set(properties, PW_KEY_MEDIA_CATEGORY, "Playback");
    pw_properties_set(properties, PW_KEY_MEDIA_ROLE, "Music");
    return properties;
}

PipeWireSoundOutput::PipeWireSoundOutput()
{
    m_events.version = PW_VERSION_STREAM_EVENTS;
    m_events.process = &PipeWireSoundOutput::process;
    const PipeWireLoop::Lock lock(m_loop);
    m_stream = pw_stream_new(m_loop.core(), "Zento", streamProperties());
    if (m_stream == nullptr) {
        throw systemError("could not play to", "PipeWire", errno);
    }
    pw_stream_add_listener(m_stream, &m_listener, &m_events, this);
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_audio_info_raw format{};
    format.format = SPA_AUDIO_FORMAT_F32;
    format.rate = kSampleRate;
    format.channels = kChannels;
    format.position[0] = SPA_AUDIO_CHANNEL_FL;
    format.position[1] = SPA_AUDIO_CHANNEL_FR;
    const spa_pod* parameter = spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format);
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
    const int connected =
        pw_stream_connect(m_stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, &parameter, 1);
    if (connected < 0) {
        pw_stream_destroy(m_stream);
        throw systemError("could not play to", "PipeWire", -connected);
    }
}

PipeWireSoundOutput::~PipeWireSoundOutput()
{
    const PipeWireLoop::Lock lock(m_loop);
    pw_stream_destroy(m_stream);
}

/// On the real-time thread: neither locks nor allocates.
void PipeWireSoundOutput::process(void* self)
{
    auto& output = *static_cast<PipeWireSoundOutput*>(self);
    if (pw_buffer* const buffer = pw_stream_dequeue_buffer(output.m_stream)) {
        output.fill(*buffer);
        pw_stream_queue_buffer(output.m_stream, buffer);
    }
}

void PipeWireSoundOutput::fill(pw_buffer& buffer)
{
    constexpr std::uint32_t kStride = kChannels * sizeof(float);
    constexpr std::uint64_t kUsual = 1024; // frames, where the service does not say
    spa_data& data = buffer.buffer->datas[0];
    if (data.data == nullptr) {
        return;
    }
    const std::uint64_t wanted = buffer.requested > 0 ? buffer.requested : kUsual;
    const std::uint64_t length = std::min<std::uint64_t>(data.maxsize / kStride, wanted);
    const std::uint64_t begin = m_taken;
    const std::uint64_t there = std::min(length, m_put - begin);
    auto* const samples = static_cast<float*>(data.data);
    for (std::uint64_t i = 0; i < there * kChannels; ++i) {
        samples[i] = m_ring[(begin * kChannels + i) % m_ring.size()];
    }
    std::fill_n(samples + there * kChannels, (length - there) * kChannels, 0.0F);
    data.chunk->offset = 0;
    data.chunk->stride = kStride;
    data.chunk->size = static_cast<std::uint32_t>(length * kStride);
    m_taken = begin + there;
}

void PipeWireSoundOutput::play(const AudioBlock& sound, const std::stop_token& stop)
{
    const std::size_t length = sound.front().size();
    for (std::size_t i = 0; i < length && !stop.stop_requested();) {
        const std::uint64_t put = m_put;
        const std::uint64_t room = kRoom - (put - m_taken);
        const std::uint64_t count = std::min<std::uint64_t>(room, length - i);
        for (std::uint64_t k = 0; k < count; ++k) {
            const std::size_t place = (put + k) % kRoom * kChannels;
            m_ring[place] = sound[0][i + k];
            m_ring[place + 1] = sound[1][i + k];
        }
        m_put = put + count;
        i += count;
        if (i < length) {
            std::this_thread::sleep_for(kLookEvery); // the real-time thread may not wake anyone
        }
    }
}

void PipeWireSoundOutput::finish(const std::stop_token& stop)
{
    while (m_taken < m_put && !stop.stop_requested()) {
        std::this_thread::sleep_for(kLookEvery);
    }
}

} // namespace

std::unique_ptr<SoundOutput> openSoundOutput()
{
    return std::make_unique<PipeWireSoundOutput>();
}

} // namespace zento
