#pragma once

#include "ZentoCapture/JournalText.h"
#include "ZentoCapture/SideRecorder.h"
#include "ZentoCore/SessionMeta.h"

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace zento {

/// The side recorders of one recording. One that cannot start is told of on standard error and
/// left out; one that fails leaves no file and no offset.
///
/// Threading: as `SideRecorder`; `startTimes` by any thread.
class SideRecorders {
public:
    SideRecorders(std::filesystem::path bundleURL, SideRecorderFactories factories);

    void startSystemAudio();
    void startMicrophone(const std::optional<std::string>& deviceID);
    void startCamera(const std::optional<std::string>& deviceID);

    /// Ends all. `meta` gets the offsets from the epoch, in seconds of CLOCK_MONOTONIC; the files
    /// of those that get none are deleted.
    void stop(double epoch, SessionMeta& meta);

    /// When the first sample of each file was taken that has one, in seconds of CLOCK_MONOTONIC.
    std::map<SideFile, double> startTimes() const;

private:
    struct Running {
        std::filesystem::path file;
        std::unique_ptr<SideRecorder> recorder; // none: did not start
    };

    Running started(
        const char* what,
        SideFile file,
        std::unique_ptr<SideRecorder> recorder,
        const std::optional<std::string>& deviceID) const;

    std::filesystem::path m_bundleURL;
    SideRecorderFactories m_factories;
    mutable std::mutex m_mutex; // guards the three below
    Running m_microphone;
    Running m_camera;
    Running m_systemAudio;
};

} // namespace zento
