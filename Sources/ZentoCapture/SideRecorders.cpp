#include "ZentoCapture/SideRecorders.h"

#include "ZentoCore/Error.h"

#include <iostream>
#include <system_error>
#include <utility>

namespace zento {

namespace {

void removeFile(const std::filesystem::path& file)
{
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
}

} // namespace

SideRecorders::SideRecorders(std::filesystem::path bundleURL, SideRecorderFactories factories)
    : m_bundleURL(std::move(bundleURL))
    , m_factories(std::move(factories))
{
}

void SideRecorders::startSystemAudio()
{
    m_systemAudio = started("system audio", "system.wav", m_factories.systemAudio(), {});
}

void SideRecorders::startMicrophone(const std::optional<std::string>& deviceID)
{
    m_microphone = started("microphone", "narration.wav", m_factories.microphone(), deviceID);
}

void SideRecorders::startCamera(const std::optional<std::string>& deviceID)
{
    m_camera = started("camera", "webcam.mov", m_factories.camera(), deviceID);
}

SideRecorders::Running SideRecorders::started(
    const char* what,
    const std::filesystem::path& file,
    std::unique_ptr<SideRecorder> recorder,
    const std::optional<std::string>& deviceID) const
{
    const std::filesystem::path path = m_bundleURL / file;
    try {
        recorder->start(path, deviceID);
        return {path, std::move(recorder)};
    } catch (const Error& error) {
        std::cerr << "warning: " << what << " unavailable: " << error.what() << '\n';
        removeFile(path);
        return {};
    }
}

void SideRecorders::stop(double epoch, SessionMeta& meta)
{
    const auto stopped = [epoch](Running& running) -> std::optional<double> {
        const auto recorder = std::exchange(running.recorder, nullptr);
        if (!recorder) {
            return {};
        }
        if (const auto start = recorder->stop()) {
            return *start - epoch;
        }
        removeFile(running.file);
        return {};
    };
    meta.narrationOffset = stopped(m_microphone);
    meta.webcamOffset = stopped(m_camera);
    meta.systemAudioOffset = stopped(m_systemAudio);
}

} // namespace zento
