#include "ZentoCapture/Backends/PipeWireAudioStream.h"

#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCapture/SoundRing.h"
#include "ZentoCapture/ThreadName.h"
#include "ZentoCore/Error.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <utility>

namespace zento {

namespace {

constexpr double kNanosecond = 1e-9;
constexpr double kPlausible = 2; // seconds
constexpr std::size_t kRingStretches = 2048;
constexpr std::size_t kRingSamples = 1U << 20;

pw_properties* streamProperties(SoundSource source, const std::optional<std::string>& target)
{
    pw_properties* const properties = pw_properties_new(nullptr, nullptr);
    const auto set = [properties](const char* key, const char* value) {
        pw_properties_set(properties, key, value);
    };
    set(PW_KEY_APP_NAME, "Zento");
    set(PW_KEY_MEDIA_TYPE, "Audio");
    set(PW_KEY_MEDIA_CATEGORY, "Capture");
    set(PW_KEY_MEDIA_ROLE, "Production");
    // Stamps are exact whatever the cycle, so a long one costs nothing but fewer wake-ups.
    set(PW_KEY_NODE_LATENCY, "1024/48000");
    // The volume and the device some earlier stream of ours was given are not this one's.
    set("state.restore-props", "false");
    set("state.restore-target", "false");
    if (source == SoundSource::DefaultOutput) {
        set(PW_KEY_NODE_NAME, "zento-system-audio");
        set(PW_KEY_STREAM_CAPTURE_SINK, "true");
    } else {
        set(PW_KEY_NODE_NAME, "zento-microphone");
    }
    if (target) {
        set(PW_KEY_TARGET_OBJECT, target->c_str());
    }
    return properties;
}

spa_audio_info_raw wantedFormat(SoundSource source)
{
    spa_audio_info_raw format{};
    format.format = SPA_AUDIO_FORMAT_F32P;
    if (source == SoundSource::DefaultOutput) {
        format.rate = 48000;
        format.channels = 2;
        format.position[0] = SPA_AUDIO_CHANNEL_FL;
        format.position[1] = SPA_AUDIO_CHANNEL_FR;
    }
    return format; // zeros leave it to the device
}

/// The samples of one buffer, a plane a channel.
struct Planes {
    std::array<const float*, SPA_AUDIO_MAX_CHANNELS> channels{};
    std::size_t channelCount = 0;
    std::size_t length = 0; // samples
};

Planes planesOf(const spa_buffer& buffer)
{
    Planes planes;
    planes.channelCount = std::min<std::size_t>(buffer.n_datas, planes.channels.size());
    for (std::size_t i = 0; i < planes.channelCount; ++i) {
        const spa_data& data = buffer.datas[i];
        if (data.data == nullptr) {
            return {};
        }
        const std::uint32_t offset = std::min(data.chunk->offset, data.maxsize);
        const std::uint32_t bytes = std::min(data.chunk->size, data.maxsize - offset);
        const std::size_t length = bytes / sizeof(float);
        planes.length = i == 0 ? length : std::min(planes.length, length);
        planes.channels[i] =
            reinterpret_cast<const float*>(static_cast<const std::byte*>(data.data) + offset);
    }
    return planes;
}

} // namespace

struct PipeWireAudioStream::State {
    State(PipeWireLoop& itsLoop, Handler itsHandler)
        : loop(itsLoop)
        , handler(std::move(itsHandler))
    {
    }
    ~State();

    static void formatChanged(void* self, std::uint32_t id, const spa_pod* param);
    static void process(void* self);
    static void soundCame(void* self, std::uint64_t count);

    double timeOfFirst(std::size_t length) const;
    void take(const spa_buffer& buffer);
    void drain();

    PipeWireLoop& loop;
    Handler handler;
    pw_stream* stream = nullptr;
    pw_stream_events events{};
    spa_hook listener{};
    spa_source* wake = nullptr;
    SoundRing ring{kRingStretches, kRingSamples};
    std::atomic<int> sampleRate = 0;
    std::atomic<bool> isHearing = true;
    bool isThreadNamed = false; // of the real-time thread
};

PipeWireAudioStream::State::~State()
{
    const PipeWireLoop::Lock lock(loop);
    if (stream != nullptr) {
        pw_stream_destroy(stream);
    }
    if (wake != nullptr) {
        pw_loop_destroy_source(loop.loop(), wake);
    }
    drain();
}

void PipeWireAudioStream::State::formatChanged(void* self, std::uint32_t id, const spa_pod* param)
{
    spa_audio_info_raw format{};
    if (id == SPA_PARAM_Format && param != nullptr
        && spa_format_audio_raw_parse(param, &format) >= 0) {
        static_cast<State*>(self)->sampleRate = static_cast<int>(format.rate);
    }
}

/// On the real-time thread: neither locks nor allocates.
void PipeWireAudioStream::State::process(void* self)
{
    auto& state = *static_cast<State*>(self);
    if (!std::exchange(state.isThreadNamed, true)) {
        nameThread("capture.sound");
    }
    pw_buffer* const buffer = pw_stream_dequeue_buffer(state.stream);
    if (buffer == nullptr) {
        return;
    }
    state.take(*buffer->buffer);
    pw_stream_queue_buffer(state.stream, buffer);
}

void PipeWireAudioStream::State::take(const spa_buffer& buffer)
{
    const Planes planes = planesOf(buffer);
    if (planes.length == 0 || sampleRate == 0 || !isHearing) {
        return;
    }
    const std::span channels(planes.channels.data(), planes.channelCount);
    // What finds no room is missing: silence takes its place.
    ring.push(timeOfFirst(planes.length), sampleRate, channels, planes.length);
    pw_loop_signal_event(loop.loop(), wake);
}

/// The cycle's time, less the way from the device and the cycles that wait behind this one. A stamp
/// that is nowhere near the present is none.
double PipeWireAudioStream::State::timeOfFirst(std::size_t length) const
{
    const double arrival = monotonicSeconds();
    pw_time time{};
    if (pw_stream_get_time_n(stream, &time, sizeof time) < 0) {
        return arrival;
    }
    const double tick = time.rate.denom == 0 ? 0 : double(time.rate.num) / time.rate.denom;
    const double waiting =
        static_cast<double>(time.avail_buffers * length + time.buffered) / sampleRate;
    const double stamp = static_cast<double>(time.now) * kNanosecond
                         - static_cast<double>(time.delay) * tick - waiting;
    return std::abs(stamp - arrival) < kPlausible ? stamp : arrival;
}

void PipeWireAudioStream::State::soundCame(void* self, std::uint64_t /*count*/)
{
    static_cast<State*>(self)->drain();
}

void PipeWireAudioStream::State::drain()
{
    while (const auto sound = ring.front()) {
        handler(*sound);
        ring.pop();
    }
}

PipeWireAudioStream::PipeWireAudioStream(
    PipeWireLoop& loop,
    SoundSource source,
    const std::optional<std::string>& target,
    Handler handler)
    : m_state(std::make_unique<State>(loop, std::move(handler)))
{
    State& state = *m_state;
    state.events.version = PW_VERSION_STREAM_EVENTS;
    state.events.param_changed = &State::formatChanged;
    state.events.process = &State::process;
    const PipeWireLoop::Lock lock(loop);
    state.wake = pw_loop_add_event(loop.loop(), &State::soundCame, &state);
    state.stream = pw_stream_new(loop.core(), "Zento", streamProperties(source, target));
    if (state.wake == nullptr || state.stream == nullptr) {
        throw systemError("could not record from", "PipeWire", errno);
    }
    pw_stream_add_listener(state.stream, &state.listener, &state.events, &state);
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_audio_info_raw format = wantedFormat(source);
    const spa_pod* parameter = spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format);
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
    const int connected =
        pw_stream_connect(state.stream, PW_DIRECTION_INPUT, PW_ID_ANY, flags, &parameter, 1);
    if (connected < 0) {
        throw systemError("could not record from", "PipeWire", -connected);
    }
}

PipeWireAudioStream::~PipeWireAudioStream() = default;

std::uint32_t PipeWireAudioStream::node() const
{
    return pw_stream_get_node_id(m_state->stream);
}

void PipeWireAudioStream::hear(Hearing hearing)
{
    m_state->isHearing = hearing == Hearing::On;
}

} // namespace zento
