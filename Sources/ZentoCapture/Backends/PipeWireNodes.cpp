#include "ZentoCapture/Backends/PipeWireNodes.h"

#include <pipewire/pipewire.h>

#include <algorithm>
#include <string_view>
#include <utility>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

namespace {

std::string property(const spa_dict* properties, const char* key)
{
    const char* const value = spa_dict_lookup(properties, key);
    return value == nullptr ? std::string() : std::string(value);
}

struct Link {
    std::uint32_t id = 0;
    std::string from; // the number of a node
    std::string to;
};

} // namespace

bool PipeWireNode::isMicrophone() const
{
    return mediaClass == "Audio/Source" || mediaClass == "Audio/Source/Virtual"
           || mediaClass == "Audio/Duplex";
}

bool PipeWireNode::isCamera() const
{
    return mediaClass == "Video/Source";
}

struct PipeWireNodes::State {
    State(PipeWireLoop& itsLoop, std::function<void()> itsChanged)
        : loop(itsLoop)
        , changed(std::move(itsChanged))
    {
    }

    static void added(
        void* self,
        std::uint32_t id,
        std::uint32_t permissions,
        const char* type,
        std::uint32_t version,
        const spa_dict* properties);
    static void removed(void* self, std::uint32_t id);

    PipeWireLoop& loop;
    std::function<void()> changed;
    pw_registry* registry = nullptr;
    pw_registry_events events{};
    spa_hook listener{};
    std::vector<PipeWireNode> nodes;
    std::vector<Link> links;
};

void PipeWireNodes::State::added(
    void* self,
    std::uint32_t id,
    std::uint32_t /*permissions*/,
    const char* type,
    std::uint32_t /*version*/,
    const spa_dict* properties)
{
    const std::string_view kind(type);
    const bool isNode = kind == PW_TYPE_INTERFACE_Node;
    if (properties == nullptr || !(isNode || kind == PW_TYPE_INTERFACE_Link)) {
        return;
    }
    auto& state = *static_cast<State*>(self);
    if (isNode) {
        state.nodes.push_back(
            {.id = id,
             .serial = property(properties, PW_KEY_OBJECT_SERIAL),
             .name = property(properties, PW_KEY_NODE_NAME),
             .mediaClass = property(properties, PW_KEY_MEDIA_CLASS),
             .description = property(properties, PW_KEY_NODE_DESCRIPTION)});
    } else {
        state.links.push_back(
            {.id = id,
             .from = property(properties, PW_KEY_LINK_OUTPUT_NODE),
             .to = property(properties, PW_KEY_LINK_INPUT_NODE)});
    }
    state.changed();
}

void PipeWireNodes::State::removed(void* self, std::uint32_t id)
{
    auto& state = *static_cast<State*>(self);
    const auto isIt = [id](const auto& object) { return object.id == id; };
    if (std::erase_if(state.nodes, isIt) + std::erase_if(state.links, isIt) > 0) {
        state.changed();
    }
}

PipeWireNodes::PipeWireNodes(PipeWireLoop& loop, std::function<void()> changed)
    : m_state(std::make_unique<State>(loop, std::move(changed)))
{
    m_state->events.version = PW_VERSION_REGISTRY_EVENTS;
    m_state->events.global = &State::added;
    m_state->events.global_remove = &State::removed;
    const PipeWireLoop::Lock lock(loop);
    m_state->registry = pw_core_get_registry(loop.core(), PW_VERSION_REGISTRY, 0);
    if (m_state->registry != nullptr) {
        pw_registry_add_listener(
            m_state->registry, &m_state->listener, &m_state->events, m_state.get());
    }
}

PipeWireNodes::~PipeWireNodes()
{
    const PipeWireLoop::Lock lock(m_state->loop);
    if (m_state->registry != nullptr) {
        spa_hook_remove(&m_state->listener);
        pw_proxy_destroy(reinterpret_cast<pw_proxy*>(m_state->registry));
    }
}

std::span<const PipeWireNode> PipeWireNodes::nodes() const
{
    return m_state->nodes;
}

std::vector<std::uint32_t> PipeWireNodes::sourcesOf(std::uint32_t node) const
{
    std::vector<std::uint32_t> result;
    for (const PipeWireNode& source : m_state->nodes) {
        const auto leadsHere = [&](const Link& link) {
            return link.from == std::to_string(source.id) && link.to == std::to_string(node);
        };
        if (std::ranges::any_of(m_state->links, leadsHere)) {
            result.push_back(source.id);
        }
    }
    return result;
}

std::optional<std::string>
knownDevice(std::span<const PipeWireNode> nodes, const std::optional<std::string>& deviceID)
{
    const bool isKnown = deviceID && std::ranges::any_of(nodes, [&](const PipeWireNode& node) {
                             return node.name == *deviceID || node.serial == *deviceID;
                         });
    return isKnown ? deviceID : std::nullopt;
}

} // namespace zento
