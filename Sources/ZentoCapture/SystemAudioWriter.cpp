#include "ZentoCapture/SystemAudioWriter.h"

#include "ZentoCapture/Backends/PipeWireSound.h"

namespace zento {

struct SystemAudioWriter::State {
    explicit State(const std::filesystem::path& file)
        : sound(loop, SoundSource::DefaultOutput, {}, file)
    {
    }

    PipeWireLoop loop{"capture.audio"};
    PipeWireSound sound;
};

SystemAudioWriter::SystemAudioWriter() = default;
SystemAudioWriter::~SystemAudioWriter() = default;

void SystemAudioWriter::start(
    const std::filesystem::path& file, const std::optional<std::string>& /*deviceID*/)
{
    m_state = std::make_unique<State>(file);
}

std::optional<double> SystemAudioWriter::stop() noexcept
{
    return m_state ? m_state->sound.stop() : std::nullopt;
}

std::optional<double> SystemAudioWriter::startTime() const
{
    return m_state ? m_state->sound.startTime() : std::nullopt;
}

} // namespace zento
