#include "SoundStage/SoundPlayer.h"

#include "Zento/Demo/Waiting.h"
#include "ZentoCapture/Backends/PipeWireLoop.h"

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace zento::test {

namespace {

constexpr double kRate = 48000;
constexpr double kPatience = 15; // seconds

} // namespace

struct SoundPlayer::State {
    explicit State(Sound itsSound)
        : sound(std::move(itsSound))
    {
    }

    static void process(void* self);
    void fill(pw_buffer& buffer);

    Sound sound;
    std::atomic<double> playedUntil = 0;
    PipeWireLoop loop{"test.player"};
    pw_stream_events events{};
    spa_hook listener{};
    pw_stream* stream = nullptr;
};

void SoundPlayer::State::process(void* self)
{
    auto& state = *static_cast<State*>(self);
    if (pw_buffer* const buffer = pw_stream_dequeue_buffer(state.stream)) {
        state.fill(*buffer);
        pw_stream_queue_buffer(state.stream, buffer);
    }
}

void SoundPlayer::State::fill(pw_buffer& buffer)
{
    spa_data& data = buffer.buffer->datas[0];
    pw_time time{};
    pw_stream_get_time_n(stream, &time, sizeof time);
    const std::uint64_t room = data.maxsize / sizeof(float);
    const std::uint64_t length = std::min(room, buffer.requested > 0 ? buffer.requested : 256);
    const double first = static_cast<double>(time.now) * 1e-9;
    auto* const samples = static_cast<float*>(data.data);
    for (std::uint64_t i = 0; i < length; ++i) {
        samples[i] = sound(first + static_cast<double>(i) / kRate);
    }
    data.chunk->offset = 0;
    data.chunk->stride = sizeof(float);
    data.chunk->size = static_cast<std::uint32_t>(length * sizeof(float));
    playedUntil = first + static_cast<double>(length) / kRate;
}

SoundPlayer::SoundPlayer(const std::string& output, Sound sound)
    : m_state(std::make_unique<State>(std::move(sound)))
{
    State& state = *m_state;
    state.events.version = PW_VERSION_STREAM_EVENTS;
    state.events.process = &State::process;
    {
        const PipeWireLoop::Lock lock(state.loop);
        pw_properties* const properties = pw_properties_new(nullptr, nullptr);
        pw_properties_set(properties, PW_KEY_MEDIA_TYPE, "Audio");
        pw_properties_set(properties, PW_KEY_MEDIA_CATEGORY, "Playback");
        pw_properties_set(properties, PW_KEY_NODE_NAME, "test-player");
        // What is played may come a cycle later than it says: short ones, of 2.7 ms.
        pw_properties_set(properties, PW_KEY_NODE_LATENCY, "128/48000");
        pw_properties_set(properties, PW_KEY_TARGET_OBJECT, output.c_str());
        // What plays to the default output would go along when another one becomes that.
        pw_properties_set(properties, PW_KEY_NODE_DONT_RECONNECT, "true");
        pw_properties_set(properties, "state.restore-target", "false");
        pw_properties_set(properties, "state.restore-props", "false");
        state.stream = pw_stream_new(state.loop.core(), "player", properties);
        pw_stream_add_listener(state.stream, &state.listener, &state.events, &state);
        std::array<std::uint8_t, 1024> memory{};
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, memory.data(), memory.size());
        spa_audio_info_raw format{};
        format.format = SPA_AUDIO_FORMAT_F32;
        format.rate = static_cast<std::uint32_t>(kRate);
        format.channels = 1;
        format.position[0] = SPA_AUDIO_CHANNEL_MONO;
        const spa_pod* parameter =
            spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format);
        const auto flags = static_cast<pw_stream_flags>(
            PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
        pw_stream_connect(state.stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, &parameter, 1);
    }
    waitUntil([&] { return state.playedUntil > 0; }, kPatience, "nothing plays to " + output, {});
}

SoundPlayer::~SoundPlayer()
{
    const PipeWireLoop::Lock lock(m_state->loop);
    pw_stream_destroy(m_state->stream);
}

double SoundPlayer::playedUntil() const
{
    return m_state->playedUntil;
}

float toneAt(double time, double hertz)
{
    return static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * hertz * time));
}

float beepsAt(double time, double period)
{
    const double since = time - std::floor(time / period) * period;
    return since < kBeepSeconds ? toneAt(since, 1000) : 0;
}

std::vector<double> wholeBeeps(const std::vector<float>& sound, double rate)
{
    constexpr float kLoud = 0.02F;
    constexpr double kTolerance = 0.001; // seconds
    std::vector<double> result;
    double begin = 0;
    double end = -1; // of what is loud
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        const bool isLoud = std::abs(sound[i]) >= kLoud;
        const bool isAlone = time - end > kTolerance;
        if (isLoud && isAlone) {
            begin = time;
        }
        if (isLoud) {
            end = time;
        } else if (end >= 0 && isAlone) {
            if (std::abs(end - begin - kBeepSeconds) < kTolerance) {
                result.push_back(begin);
            }
            end = -1;
        }
    }
    return result;
}

} // namespace zento::test
