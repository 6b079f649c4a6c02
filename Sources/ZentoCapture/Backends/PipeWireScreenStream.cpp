#include "ZentoCapture/Backends/PipeWireScreenStream.h"

#include "ZentoCapture/Backends/CardMemory.h"
#include "ZentoCapture/Backends/ScreenStreamFormat.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/Error.h"

#include <pipewire/pipewire.h>
#include <spa/param/param.h>
#include <spa/pod/builder.h>

#include <array>
#include <optional>
#include <span>
#include <utility>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

pw_properties* streamProperties()
{
    pw_properties* const properties = pw_properties_new(nullptr, nullptr);
    pw_properties_set(properties, PW_KEY_APP_NAME, "Zento");
    pw_properties_set(properties, PW_KEY_NODE_NAME, "zento-screen");
    pw_properties_set(properties, PW_KEY_MEDIA_TYPE, "Video");
    pw_properties_set(properties, PW_KEY_MEDIA_CATEGORY, "Capture");
    pw_properties_set(properties, PW_KEY_MEDIA_ROLE, "Screen");
    // Another source must not take the place of one that has gone.
    pw_properties_set(properties, PW_KEY_NODE_DONT_RECONNECT, "true");
    return properties;
}

} // namespace

struct PipeWireScreenStream::State {
    State(PipeWireLoop& itsLoop, std::uint32_t itsNode, Handlers itsHandlers)
        : loop(itsLoop)
        , node(itsNode)
        , handlers(std::move(itsHandlers))
    {
    }
    ~State();

    void connect();
    void watchNode();
    void lose(const std::string& reason);
    void read(const ScreenForm& itsForm, pw_buffer& buffer) const;

    static void formatChanged(void* self, std::uint32_t id, const spa_pod* param);
    static void
    stateChanged(void* self, pw_stream_state before, pw_stream_state now, const char* message);
    static void bufferAdded(void* self, pw_buffer* buffer);
    static void bufferRemoved(void* self, pw_buffer* buffer);
    static void process(void* self);
    static void picturesCame(void* self, std::uint64_t count);
    static void nodeRemoved(void* self, std::uint32_t id);

    PipeWireLoop& loop;
    std::uint32_t node;
    Handlers handlers;
    pw_stream* stream = nullptr;
    pw_stream_events events{};
    spa_hook listener{};
    pw_registry* registry = nullptr;
    pw_registry_events registryEvents{};
    spa_hook registryListener{};
    spa_source* wake = nullptr;
    std::optional<ScreenForm> form;
    bool isGone = false;
};

PipeWireScreenStream::State::~State()
{
    const PipeWireLoop::Lock lock(loop);
    isGone = true; // taking the stream down is no loss
    if (registry != nullptr) {
        pw_proxy_destroy(reinterpret_cast<pw_proxy*>(registry)); // NOLINT: the library's way
    }
    if (stream != nullptr) {
        pw_stream_destroy(stream);
    }
    if (wake != nullptr) {
        pw_loop_destroy_source(loop.loop(), wake);
    }
}

void PipeWireScreenStream::State::connect()
{
    events.version = PW_VERSION_STREAM_EVENTS;
    events.param_changed = &State::formatChanged;
    events.state_changed = &State::stateChanged;
    events.add_buffer = &State::bufferAdded;
    events.remove_buffer = &State::bufferRemoved;
    events.process = &State::process;
    wake = pw_loop_add_event(loop.loop(), &State::picturesCame, this);
    stream = pw_stream_new(loop.core(), "Zento", streamProperties());
    if (wake == nullptr || stream == nullptr) {
        throw Error(ErrorCode::kPortalFailed, "the screen's stream could not be opened");
    }
    pw_stream_add_listener(stream, &listener, &events, this);
    watchNode();
    std::array<std::uint8_t, 4096> memory{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, memory.data(), memory.size());
    auto formats = wantedScreenFormats(builder);
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS
        | PW_STREAM_FLAG_DONT_RECONNECT);
    if (pw_stream_connect(
            stream,
            PW_DIRECTION_INPUT,
            node,
            flags,
            formats.data(),
            static_cast<std::uint32_t>(formats.size()))
        < 0) {
        throw Error(ErrorCode::kPortalFailed, "the screen's pictures could not be asked for");
    }
}

/// A stream whose source goes away is not told so, it only gets nothing more.
void PipeWireScreenStream::State::watchNode()
{
    registryEvents.version = PW_VERSION_REGISTRY_EVENTS;
    registryEvents.global_remove = &State::nodeRemoved;
    registry = pw_core_get_registry(loop.core(), PW_VERSION_REGISTRY, 0);
    if (registry != nullptr) {
        pw_registry_add_listener(registry, &registryListener, &registryEvents, this);
    }
}

void PipeWireScreenStream::State::lose(const std::string& reason)
{
    if (!std::exchange(isGone, true)) {
        handlers.gone(reason);
    }
}

void PipeWireScreenStream::State::formatChanged(void* self, std::uint32_t id, const spa_pod* param)
{
    if (id != SPA_PARAM_Format) {
        return;
    }
    auto& state = *static_cast<State*>(self);
    state.form = param == nullptr ? std::nullopt : screenForm(*param);
    if (state.form) {
        std::array<std::uint8_t, 4096> memory{};
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, memory.data(), memory.size());
        auto parameters = wantedScreenBuffers(builder, *state.form);
        pw_stream_update_params(
            state.stream, parameters.data(), static_cast<std::uint32_t>(parameters.size()));
    }
}

void PipeWireScreenStream::State::stateChanged(
    void* self, pw_stream_state before, pw_stream_state now, const char* message)
{
    const bool isLost =
        now == PW_STREAM_STATE_ERROR
        || (now == PW_STREAM_STATE_UNCONNECTED && before != PW_STREAM_STATE_CONNECTING);
    if (isLost) {
        static_cast<State*>(self)->lose(message == nullptr ? "the stream has ended" : message);
    }
}

void PipeWireScreenStream::State::bufferAdded(void* /*self*/, pw_buffer* buffer)
{
    const spa_buffer& spa = *buffer->buffer;
    if (spa.n_datas > 0 && spa.datas[0].type == SPA_DATA_DmaBuf && spa.datas[0].data == nullptr) {
        const spa_data& block = spa.datas[0];
        buffer->user_data = new CardMemory( // NOLINT: until `bufferRemoved`
            static_cast<int>(block.fd),
            block.mapoffset,
            block.maxsize);
    }
}

void PipeWireScreenStream::State::bufferRemoved(void* /*self*/, pw_buffer* buffer)
{
    delete static_cast<const CardMemory*>(buffer->user_data); // NOLINT: of `bufferAdded`
    buffer->user_data = nullptr;
}

/// On the real-time thread, for the reason that `PipeWireCameraStream` gives.
void PipeWireScreenStream::State::process(void* self)
{
    const auto& state = *static_cast<const State*>(self);
    pw_loop_signal_event(state.loop.loop(), state.wake);
}

/// Every buffer counts: one without a picture may still say where the pointer was.
void PipeWireScreenStream::State::picturesCame(void* self, std::uint64_t /*count*/)
{
    const auto& state = *static_cast<const State*>(self);
    while (pw_buffer* const buffer = pw_stream_dequeue_buffer(state.stream)) {
        if (state.form && !state.isGone) {
            state.read(*state.form, *buffer);
        }
        pw_stream_queue_buffer(state.stream, buffer);
    }
}

void PipeWireScreenStream::State::read(const ScreenForm& itsForm, pw_buffer& buffer) const
{
    const auto* const card = static_cast<const CardMemory*>(buffer.user_data);
    std::optional<CardMemory::Reading> reading;
    if (card != nullptr) {
        reading.emplace(*card);
    }
    handlers.update(screenUpdate(
        itsForm,
        *buffer.buffer,
        card == nullptr ? std::span<const std::uint8_t>() : card->bytes(),
        monotonicSeconds()));
}

void PipeWireScreenStream::State::nodeRemoved(void* self, std::uint32_t id)
{
    auto& state = *static_cast<State*>(self);
    if (id == state.node) {
        state.lose("the desktop has ended its stream");
    }
}

PipeWireScreenStream::PipeWireScreenStream(
    PipeWireLoop& loop, std::uint32_t node, Handlers handlers)
    : m_state(std::make_unique<State>(loop, node, std::move(handlers)))
{
    const PipeWireLoop::Lock lock(loop);
    m_state->connect();
}

PipeWireScreenStream::~PipeWireScreenStream() = default;

} // namespace zento
