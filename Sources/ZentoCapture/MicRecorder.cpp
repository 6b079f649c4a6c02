#include "ZentoCapture/MicRecorder.h"

#include "ZentoCapture/Backends/PipeWireNodes.h"
#include "ZentoCapture/Backends/PipeWireSound.h"
#include "ZentoCore/Error.h"

#include <algorithm>
#include <vector>

namespace zento {

namespace {

std::vector<PipeWireNode> microphones(const PipeWireNodes& nodes)
{
    std::vector<PipeWireNode> result;
    std::ranges::copy_if(nodes.nodes(), std::back_inserter(result), &PipeWireNode::isMicrophone);
    return result;
}

} // namespace

struct MicRecorder::State {
    State(const std::filesystem::path& file, const std::optional<std::string>& deviceID)
        : nodes(loop, [this] { devicesChanged(); })
        , sound(loop, SoundSource::Microphone, knownDevice(present(), deviceID), file)
    {
        const PipeWireLoop::Lock lock(loop);
        isReady = true;
        devicesChanged();
    }
    ~State() { ignoreDevices(); }

    std::vector<PipeWireNode> present();
    void devicesChanged();
    void ignoreDevices();

    PipeWireLoop loop{"capture.audio"};
    bool isReady = false; // `sound` stands and hears; with the lock
    PipeWireNodes nodes;
    PipeWireSound sound;
};

/// Throws when there is none.
std::vector<PipeWireNode> MicRecorder::State::present()
{
    const PipeWireLoop::Lock lock(loop);
    auto result = loop.roundTrip() ? microphones(nodes) : std::vector<PipeWireNode>();
    if (result.empty()) {
        throw Error(ErrorCode::kNoMicrophone, "no microphone input");
    }
    return result;
}

/// Without a microphone the service hands us what an output plays, and for a moment still when
/// there is one again.
void MicRecorder::State::devicesChanged()
{
    if (!isReady) {
        return;
    }
    const auto sources = nodes.sourcesOf(sound.node());
    const bool isLinked = std::ranges::any_of(nodes.nodes(), [&](const PipeWireNode& node) {
        return node.isMicrophone() && std::ranges::find(sources, node.id) != sources.end();
    });
    sound.hear(isLinked ? Hearing::On : Hearing::Off);
}

/// Before `sound` ends: devices come and go until the connection does.
void MicRecorder::State::ignoreDevices()
{
    const PipeWireLoop::Lock lock(loop);
    isReady = false;
}

MicRecorder::MicRecorder() = default;
MicRecorder::~MicRecorder() = default;

void MicRecorder::start(
    const std::filesystem::path& file, const std::optional<std::string>& deviceID)
{
    try {
        m_state = std::make_unique<State>(file, deviceID);
    } catch (const Error& error) {
        if (error.domain() == "Zento") {
            throw;
        }
        throw Error(ErrorCode::kNoMicrophone, std::string("no microphone input: ") + error.what());
    }
}

std::optional<double> MicRecorder::stop() noexcept
{
    if (!m_state) {
        return {};
    }
    m_state->ignoreDevices();
    return m_state->sound.stop();
}

std::optional<double> MicRecorder::startTime() const
{
    return m_state ? m_state->sound.startTime() : std::nullopt;
}

} // namespace zento
