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
    auto running = started("system audio", SideFile::SystemAudio, m_factories.systemAudio(), {});
    const std::lock_guard lock(m_mutex);
    m_systemAudio = std::move(running);
}

void SideRecorders::startMicrophone(const std::optional<std::string>& deviceID)
{
    auto running = started("microphone", SideFile::Narration, m_factories.microphone(), deviceID);
    const std::lock_guard lock(m_mutex);
    m_microphone = std::move(running);
}

void SideRecorders::startCamera(const std::optional<std::string>& deviceID)
{
    auto running = started("camera", SideFile::Webcam, m_factories.camera(), deviceID);
    const std::lock_guard lock(m_mutex);
    m_camera = std::move(running);
}

SideRecorders::Running SideRecorders::started(
    const char* what,
    SideFile file,
    std::unique_ptr<SideRecorder> recorder,
    const std::optional<std::string>& deviceID) const
{
    const std::filesystem::path path = m_bundleURL / fileName(file);
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
    const std::lock_guard lock(m_mutex);
    meta.narrationOffset = stopped(m_microphone);
    meta.webcamOffset = stopped(m_camera);
    meta.systemAudioOffset = stopped(m_systemAudio);
}

std::map<SideFile, double> SideRecorders::startTimes() const
{
    const std::lock_guard lock(m_mutex);
    std::map<SideFile, double> times;
    const auto add = [&times](SideFile file, const Running& running) {
        if (const auto time = running.recorder ? running.recorder->startTime() : std::nullopt) {
            times[file] = *time;
        }
    };
    add(SideFile::Narration, m_microphone);
    add(SideFile::Webcam, m_camera);
    add(SideFile::SystemAudio, m_systemAudio);
    return times;
}

} // namespace zento
