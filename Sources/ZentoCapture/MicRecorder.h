#pragma once

#include "ZentoCapture/SideRecorder.h"

namespace zento {

/// Records a microphone as it is, in its own rate and channels, into a WAV file that stays in step
/// with the clock whatever the device does.
///
/// When the microphone vanishes the recording goes on with the one the desktop falls back to; while
/// there is none there is silence. What other programs play never gets in.
class MicRecorder final : public SideRecorder {
public:
    MicRecorder();
    ~MicRecorder() override;

    /// Throws `Error` with the code 30 when there is no microphone or no sound service.
    void
    start(const std::filesystem::path& file, const std::optional<std::string>& deviceID) override;
    std::optional<double> stop() noexcept override;
    std::optional<double> startTime() const override;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
