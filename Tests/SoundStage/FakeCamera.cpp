#include "SoundStage/FakeCamera.h"

#include "SoundStage/PrivateSound.h"
#include "Zento/Demo/Waiting.h"
#include "ZentoCapture/Backends/PipeWireLoop.h"
#include "ZentoCapture/MonotonicClock.h"

#include <pipewire/pipewire.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento::test {

namespace {

constexpr double kPatience = 15; // seconds

std::int32_t largestPicture(const FakeCamera::Format& format)
{
    return format.width * format.height * 3 / 2;
}

const spa_pod* formatParameter(spa_pod_builder& builder, const FakeCamera::Format& format)
{
    const bool isJpeg = format.form == FakeCameraForm::Jpeg;
    spa_pod_frame object{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
    spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
    spa_pod_builder_id(&builder, isJpeg ? SPA_MEDIA_SUBTYPE_mjpg : SPA_MEDIA_SUBTYPE_raw);
    if (!isJpeg) {
        spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
        spa_pod_builder_id(&builder, SPA_VIDEO_FORMAT_I420);
    }
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
    spa_pod_builder_rectangle(
        &builder,
        static_cast<std::uint32_t>(format.width),
        static_cast<std::uint32_t>(format.height));
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
    spa_pod_builder_fraction(&builder, static_cast<std::uint32_t>(format.rate), 1);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

void setUpBuffers(pw_stream* stream, const FakeCamera::Format& format)
{
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    std::array<const spa_pod*, 2> parameters{};
    spa_pod_frame object{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
    for (const auto& [key, value] :
         {std::pair<std::uint32_t, std::int32_t>{SPA_PARAM_BUFFERS_buffers, 4},
          {SPA_PARAM_BUFFERS_blocks, 1},
          {SPA_PARAM_BUFFERS_size, largestPicture(format)},
          {SPA_PARAM_BUFFERS_stride, format.width}}) {
        spa_pod_builder_prop(&builder, key, 0);
        spa_pod_builder_int(&builder, value);
    }
    parameters[0] = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
    spa_pod_builder_prop(&builder, SPA_PARAM_META_type, 0);
    spa_pod_builder_id(&builder, SPA_META_Header);
    spa_pod_builder_prop(&builder, SPA_PARAM_META_size, 0);
    spa_pod_builder_int(&builder, sizeof(spa_meta_header));
    parameters[1] = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
    pw_stream_update_params(stream, parameters.data(), parameters.size());
}

} // namespace

struct FakeCamera::State {
    State(const Format& itsFormat, Painter itsPainter)
        : format(itsFormat)
        , painter(std::move(itsPainter))
    {
    }

    static void formatChanged(void* self, std::uint32_t id, const spa_pod* param);
    static void
    stateChanged(void* self, pw_stream_state before, pw_stream_state now, const char* message);
    static void process(void* self);
    static void tick(void* self, std::uint64_t count);

    Format format;
    Painter painter;
    std::atomic<int> shown = 0;
    PipeWireLoop loop{"test.camera"};
    pw_stream_events events{};
    spa_hook listener{};
    pw_stream* stream = nullptr;
    spa_source* timer = nullptr;
};

void FakeCamera::State::formatChanged(void* self, std::uint32_t id, const spa_pod* param)
{
    if (id == SPA_PARAM_Format && param != nullptr) {
        auto& state = *static_cast<State*>(self);
        setUpBuffers(state.stream, state.format);
    }
}

void FakeCamera::State::stateChanged(
    void* self, pw_stream_state /*before*/, pw_stream_state now, const char* /*message*/)
{
    auto& state = *static_cast<State*>(self);
    timespec first{.tv_sec = 0, .tv_nsec = now == PW_STREAM_STATE_STREAMING ? 1 : 0};
    timespec interval{.tv_sec = 0, .tv_nsec = 1'000'000'000 / state.format.rate};
    pw_loop_update_timer(state.loop.loop(), state.timer, &first, &interval, false);
}

void FakeCamera::State::tick(void* self, std::uint64_t /*count*/)
{
    pw_stream_trigger_process(static_cast<State*>(self)->stream);
}

void FakeCamera::State::process(void* self)
{
    auto& state = *static_cast<State*>(self);
    pw_buffer* const buffer = pw_stream_dequeue_buffer(state.stream);
    if (buffer == nullptr) {
        return;
    }
    const double time = monotonicSeconds();
    spa_data& data = buffer->buffer->datas[0];
    const auto bytes = state.painter(state.shown, time);
    const std::size_t size = std::min<std::size_t>(bytes.size(), data.maxsize);
    std::copy_n(bytes.data(), size, static_cast<std::uint8_t*>(data.data));
    data.chunk->offset = 0;
    data.chunk->size = static_cast<std::uint32_t>(size);
    data.chunk->stride = state.format.width;
    if (auto* const header = static_cast<spa_meta_header*>(
            spa_buffer_find_meta_data(buffer->buffer, SPA_META_Header, sizeof(spa_meta_header)))) {
        header->pts = static_cast<std::int64_t>(time * 1e9);
        header->flags = 0;
        header->seq = static_cast<std::uint64_t>(state.shown);
    }
    pw_stream_queue_buffer(state.stream, buffer);
    ++state.shown;
}

FakeCamera::FakeCamera(std::string name, const Format& format, Painter painter)
    : m_state(std::make_unique<State>(format, std::move(painter)))
{
    State& state = *m_state;
    state.events.version = PW_VERSION_STREAM_EVENTS;
    state.events.param_changed = &State::formatChanged;
    state.events.state_changed = &State::stateChanged;
    state.events.process = &State::process;
    {
        const PipeWireLoop::Lock lock(state.loop);
        state.timer = pw_loop_add_timer(state.loop.loop(), &State::tick, &state);
        pw_properties* const properties = pw_properties_new(nullptr, nullptr);
        pw_properties_set(properties, PW_KEY_MEDIA_CLASS, "Video/Source");
        pw_properties_set(properties, PW_KEY_MEDIA_ROLE, "Camera");
        pw_properties_set(properties, PW_KEY_NODE_NAME, name.c_str());
        state.stream = pw_stream_new(state.loop.core(), "camera", properties);
        pw_stream_add_listener(state.stream, &state.listener, &state.events, &state);
        std::array<std::uint8_t, 1024> memory{};
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, memory.data(), memory.size());
        const spa_pod* parameter = formatParameter(builder, format);
        const auto flags = static_cast<pw_stream_flags>(
            PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
        pw_stream_connect(state.stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, &parameter, 1);
    }
    waitUntil([&] { return hasNode(name); }, kPatience, "there is no " + name, {});
}

FakeCamera::~FakeCamera()
{
    const PipeWireLoop::Lock lock(m_state->loop);
    pw_stream_destroy(m_state->stream);
    pw_loop_destroy_source(m_state->loop.loop(), m_state->timer);
}

int FakeCamera::shown() const
{
    return m_state->shown;
}

} // namespace zento::test
