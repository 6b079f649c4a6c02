#pragma once

#include "ZentoCapture/Backends/PipeWireAudioStream.h"
#include "ZentoCapture/ClockedWav.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace zento {

/// A file that a stream of sound goes to.
///
/// Threading: as `SideRecorder`.
class PipeWireSound {
public:
    /// Throws `Error` as `PipeWireAudioStream`.
    PipeWireSound(
        PipeWireLoop& loop,
        SoundSource source,
        const std::optional<std::string>& target,
        const std::filesystem::path& file)
        : m_wav(file)
        , m_stream(std::make_unique<PipeWireAudioStream>(
              loop, source, target, [this](const TimedSound& sound) { m_wav.append(sound); }))
    {
    }

    // As those of the stream; not once it has been stopped.
    std::uint32_t node() const { return m_stream->node(); }
    void hear(Hearing hearing) { m_stream->hear(hearing); }
    std::optional<double> startTime() const { return m_wav.startTime(); }

    /// Ends the stream and closes the file; as `SideRecorder::stop`.
    std::optional<double> stop() noexcept
    {
        m_stream.reset();
        return m_wav.finish();
    }

private:
    ClockedWav m_wav;
    std::unique_ptr<PipeWireAudioStream> m_stream; // goes first: it feeds the file
};

} // namespace zento
