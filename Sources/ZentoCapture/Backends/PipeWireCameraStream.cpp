#include "ZentoCapture/Backends/PipeWireCameraStream.h"

#include "ZentoCapture/Backends/PipeWireCameraFormat.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/Error.h"

#include <pipewire/pipewire.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/param.h>
#include <spa/pod/builder.h>

#include <array>
#include <cerrno>
#include <utility>

namespace zento {

namespace {

constexpr double kNanosecond = 1e-9;

pw_properties* streamProperties(const std::optional<std::string>& target)
{
    pw_properties* const properties = pw_properties_new(nullptr, nullptr);
    pw_properties_set(properties, PW_KEY_APP_NAME, "Zento");
    pw_properties_set(properties, PW_KEY_NODE_NAME, "zento-camera");
    pw_properties_set(properties, PW_KEY_MEDIA_TYPE, "Video");
    pw_properties_set(properties, PW_KEY_MEDIA_CATEGORY, "Capture");
    pw_properties_set(properties, PW_KEY_MEDIA_ROLE, "Camera");
    pw_properties_set(properties, "state.restore-target", "false");
    if (target) {
        pw_properties_set(properties, PW_KEY_TARGET_OBJECT, target->c_str());
    }
    return properties;
}

/// Asks for memory we can read, and for the camera's stamps.
void askForBuffers(pw_stream* stream)
{
    std::array<std::uint8_t, 512> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::array<const spa_pod*, 2> parameters{};
    spa_pod_frame object{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
    spa_pod_builder_prop(&builder, SPA_PARAM_BUFFERS_dataType, 0);
    spa_pod_frame choice{};
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Flags, 0);
    spa_pod_builder_int(&builder, (1 << SPA_DATA_MemPtr) | (1 << SPA_DATA_MemFd));
    spa_pod_builder_pop(&builder, &choice);
    parameters[0] = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
    spa_pod_builder_prop(&builder, SPA_PARAM_META_type, 0);
    spa_pod_builder_id(&builder, SPA_META_Header);
    spa_pod_builder_prop(&builder, SPA_PARAM_META_size, 0);
    spa_pod_builder_int(&builder, sizeof(spa_meta_header));
    parameters[1] = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
    pw_stream_update_params(stream, parameters.data(), parameters.size());
}

std::optional<double> stampOf(const spa_buffer& buffer)
{
    const auto* const header = static_cast<const spa_meta_header*>(
        spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
    if (header == nullptr || header->pts <= 0) {
        return {};
    }
    return static_cast<double>(header->pts) * kNanosecond;
}

bool isDamaged(const spa_buffer& buffer)
{
    return buffer.n_datas == 0
           || (static_cast<unsigned>(buffer.datas[0].chunk->flags) & SPA_CHUNK_FLAG_CORRUPTED) != 0;
}

} // namespace

struct PipeWireCameraStream::State {
    State(PipeWireLoop& itsLoop, Handler itsOnFrame, FailureHandler itsOnFailure)
        : loop(itsLoop)
        , onFrame(std::move(itsOnFrame))
        , onFailure(std::move(itsOnFailure))
    {
    }
    ~State();

    static void formatChanged(void* self, std::uint32_t id, const spa_pod* param);
    static void
    stateChanged(void* self, pw_stream_state before, pw_stream_state now, const char* message);
    static void process(void* self);
    static void pictureCame(void* self, std::uint64_t count);
    pw_buffer* newest() const;

    PipeWireLoop& loop;
    Handler onFrame;
    FailureHandler onFailure;
    pw_stream* stream = nullptr;
    pw_stream_events events{};
    spa_hook listener{};
    spa_source* wake = nullptr;
    std::optional<CameraPicture> form;
};

PipeWireCameraStream::State::~State()
{
    const PipeWireLoop::Lock lock(loop);
    if (stream != nullptr) {
        pw_stream_destroy(stream);
    }
    if (wake != nullptr) {
        pw_loop_destroy_source(loop.loop(), wake);
    }
}

void PipeWireCameraStream::State::formatChanged(void* self, std::uint32_t id, const spa_pod* param)
{
    if (id != SPA_PARAM_Format) {
        return;
    }
    auto& state = *static_cast<State*>(self);
    state.form = param == nullptr ? std::nullopt : cameraFormat(*param);
    if (state.form) {
        askForBuffers(state.stream);
    }
}

void PipeWireCameraStream::State::stateChanged(
    void* self, pw_stream_state /*before*/, pw_stream_state now, const char* message)
{
    if (now == PW_STREAM_STATE_ERROR) {
        static_cast<State*>(self)->onFailure(message == nullptr ? "no picture" : message);
    }
}

pw_buffer* PipeWireCameraStream::State::newest() const
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(stream);
    while (buffer != nullptr) {
        pw_buffer* const later = pw_stream_dequeue_buffer(stream);
        if (later == nullptr) {
            break;
        }
        pw_stream_queue_buffer(stream, buffer);
        buffer = later;
    }
    return buffer;
}

/// On the real-time thread. Would the library call us on the loop's instead, a call that is on its
/// way when the stream is destroyed would be made all the same, and end the program (0.3.65).
void PipeWireCameraStream::State::process(void* self)
{
    const auto& state = *static_cast<const State*>(self);
    pw_loop_signal_event(state.loop.loop(), state.wake);
}

void PipeWireCameraStream::State::pictureCame(void* self, std::uint64_t /*count*/)
{
    auto& state = *static_cast<State*>(self);
    const double arrival = monotonicSeconds();
    pw_buffer* const buffer = state.newest();
    if (buffer == nullptr) {
        return;
    }
    if (state.form && !isDamaged(*buffer->buffer)) {
        if (const auto picture = cameraPicture(*state.form, *buffer->buffer)) {
            state.onFrame({*picture, stampOf(*buffer->buffer), arrival});
        }
    }
    pw_stream_queue_buffer(state.stream, buffer);
}

PipeWireCameraStream::PipeWireCameraStream(
    PipeWireLoop& loop,
    const std::optional<std::string>& target,
    Handler onFrame,
    FailureHandler onFailure)
    : m_state(std::make_unique<State>(loop, std::move(onFrame), std::move(onFailure)))
{
    State& state = *m_state;
    state.events.version = PW_VERSION_STREAM_EVENTS;
    state.events.param_changed = &State::formatChanged;
    state.events.state_changed = &State::stateChanged;
    state.events.process = &State::process;
    const PipeWireLoop::Lock lock(loop);
    state.wake = pw_loop_add_event(loop.loop(), &State::pictureCame, &state);
    state.stream = pw_stream_new(loop.core(), "Zento", streamProperties(target));
    if (state.wake == nullptr || state.stream == nullptr) {
        throw Error(ErrorCode::kCameraRefused, "the camera could not be opened");
    }
    pw_stream_add_listener(state.stream, &state.listener, &state.events, &state);
    std::array<std::uint8_t, 4096> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    auto formats = wantedCameraFormats(builder);
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
    const int connected = pw_stream_connect(
        state.stream,
        PW_DIRECTION_INPUT,
        PW_ID_ANY,
        flags,
        formats.data(),
        static_cast<std::uint32_t>(formats.size()));
    if (connected < 0) {
        throw Error(
            ErrorCode::kCameraFormatRefused, "the camera's pictures could not be asked for");
    }
}

PipeWireCameraStream::~PipeWireCameraStream() = default;

} // namespace zento
