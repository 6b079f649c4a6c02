#pragma once

#include "ZentoCapture/SideRecorder.h"

namespace zento {

/// Records what the machine plays, at 48 kHz in stereo: what goes to the default output, also when
/// that becomes another one. A silent output gives silence.
class SystemAudioWriter final : public SideRecorder {
public:
    SystemAudioWriter();
    ~SystemAudioWriter() override;

    /// Throws `Error` of the system when there is no sound service.
    void
    start(const std::filesystem::path& file, const std::optional<std::string>& deviceID) override;
    std::optional<double> stop() noexcept override;
    std::optional<double> startTime() const override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
