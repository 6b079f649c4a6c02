#include "WaylandStage/FakeScreen.h"

#include "Zento/Demo/Waiting.h"
#include "ZentoCapture/Backends/PipeWireLoop.h"

#include <pipewire/pipewire.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento::test {

namespace {

constexpr double kPatience = 15; // seconds
constexpr std::int64_t kLinear = 0;

const spa_pod* formatParameter(spa_pod_builder& builder, const FakeScreen::Form& form)
{
    spa_pod_frame object{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
    spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
    spa_pod_builder_id(&builder, SPA_MEDIA_SUBTYPE_raw);
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
    spa_pod_builder_id(&builder, form.format);
    if (form.memory == FakeScreen::Memory::OfCard) {
        spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_modifier, SPA_POD_PROP_FLAG_MANDATORY);
        spa_pod_builder_long(&builder, kLinear);
    }
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
    spa_pod_builder_rectangle(
        &builder, static_cast<std::uint32_t>(form.width), static_cast<std::uint32_t>(form.height));
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
    spa_pod_builder_fraction(&builder, 0, 1);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

} // namespace

struct FakeScreen::State {
    explicit State(const Form& itsForm)
        : form(itsForm)
    {
    }

    static void formatChanged(void* self, std::uint32_t id, const spa_pod* param);
    static void bufferAdded(void* self, pw_buffer* buffer);
    static void bufferRemoved(void* self, pw_buffer* buffer);

    std::uint32_t bytes() const
    {
        return static_cast<std::uint32_t>(form.width * form.height * form.bytes);
    }

    Form form;
    PipeWireLoop loop{"test.screen"};
    pw_stream_events events{};
    spa_hook listener{};
    pw_stream* stream = nullptr;
};

void FakeScreen::State::formatChanged(void* self, std::uint32_t id, const spa_pod* param)
{
    if (id != SPA_PARAM_Format || param == nullptr) {
        return;
    }
    const auto& state = *static_cast<State*>(self);
    const bool isOfCard = state.form.memory == Memory::OfCard;
    std::array<std::uint8_t, 1024> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    spa_pod_frame object{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
    for (const auto& [key, value] :
         {std::pair<std::uint32_t, std::int32_t>{SPA_PARAM_BUFFERS_buffers, 4},
          {SPA_PARAM_BUFFERS_blocks, 1},
          {SPA_PARAM_BUFFERS_size, static_cast<std::int32_t>(state.bytes())},
          {SPA_PARAM_BUFFERS_stride, state.form.width * state.form.bytes}}) {
        spa_pod_builder_prop(&builder, key, 0);
        spa_pod_builder_int(&builder, value);
    }
    spa_pod_frame choice{};
    spa_pod_builder_prop(&builder, SPA_PARAM_BUFFERS_dataType, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Flags, 0);
    spa_pod_builder_int(&builder, 1 << (isOfCard ? SPA_DATA_DmaBuf : SPA_DATA_MemFd));
    spa_pod_builder_pop(&builder, &choice);
    const auto* parameter = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
    pw_stream_update_params(state.stream, &parameter, 1);
}

void FakeScreen::State::bufferAdded(void* self, pw_buffer* buffer)
{
    const auto& state = *static_cast<State*>(self);
    const int file = ::memfd_create("zento-screen", MFD_CLOEXEC);
    if (::ftruncate(file, state.bytes()) != 0) {
        return;
    }
    spa_data& data = buffer->buffer->datas[0];
    data.type = state.form.memory == Memory::OfCard ? SPA_DATA_DmaBuf : SPA_DATA_MemFd;
    data.flags = SPA_DATA_FLAG_READWRITE;
    data.fd = file;
    data.mapoffset = 0;
    data.maxsize = state.bytes();
    buffer->user_data = ::mmap(nullptr, state.bytes(), PROT_WRITE, MAP_SHARED, file, 0);
}

void FakeScreen::State::bufferRemoved(void* self, pw_buffer* buffer)
{
    ::munmap(buffer->user_data, static_cast<const State*>(self)->bytes());
    ::close(static_cast<int>(buffer->buffer->datas[0].fd));
}

FakeScreen::FakeScreen(const Form& form)
    : m_state(std::make_unique<State>(form))
{
    State& state = *m_state;
    state.events.version = PW_VERSION_STREAM_EVENTS;
    state.events.param_changed = &State::formatChanged;
    state.events.add_buffer = &State::bufferAdded;
    state.events.remove_buffer = &State::bufferRemoved;
    {
        const PipeWireLoop::Lock lock(state.loop);
        state.stream =
            pw_stream_new(state.loop.core(), "screen", pw_properties_new(nullptr, nullptr));
        pw_stream_add_listener(state.stream, &state.listener, &state.events, &state);
        std::array<std::uint8_t, 1024> memory{};
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, memory.data(), memory.size());
        const spa_pod* parameter = formatParameter(builder, form);
        const auto flags =
            static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_ALLOC_BUFFERS);
        pw_stream_connect(state.stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, &parameter, 1);
    }
    waitUntil([this] { return node() != SPA_ID_INVALID; }, kPatience, "there is no stream", {});
}

FakeScreen::~FakeScreen()
{
    const PipeWireLoop::Lock lock(m_state->loop);
    pw_stream_destroy(m_state->stream);
}

std::uint32_t FakeScreen::node() const
{
    const PipeWireLoop::Lock lock(m_state->loop);
    return pw_stream_get_node_id(m_state->stream);
}

bool FakeScreen::show(const std::vector<std::uint8_t>& bytes, const Chunk& chunk)
{
    const PipeWireLoop::Lock lock(m_state->loop);
    if (pw_stream_get_state(m_state->stream, nullptr) != PW_STREAM_STATE_STREAMING) {
        return false;
    }
    pw_buffer* const buffer = pw_stream_dequeue_buffer(m_state->stream);
    if (buffer == nullptr) {
        return false;
    }
    const std::size_t count = std::min<std::size_t>(bytes.size(), m_state->bytes());
    std::copy_n(bytes.data(), count, static_cast<std::uint8_t*>(buffer->user_data));
    spa_chunk& told = *buffer->buffer->datas[0].chunk;
    told = {.offset = chunk.offset, .size = chunk.size, .stride = chunk.stride, .flags = 0};
    pw_stream_queue_buffer(m_state->stream, buffer);
    return true;
}

} // namespace zento::test
