#pragma once

#include "ZentoCapture/SideRecorder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zento {

/// Side recorders in memory, which write what they do into the steps of a recording. What they are
/// to do is said before it starts.
class FakeSideRecorders {
public:
    struct Device {
        std::optional<Error> failure;        // of its start, after the file was made
        std::optional<double> start;         // what `stop` returns
        std::optional<std::string> deviceID; // what it was started with
    };

    explicit FakeSideRecorders(std::vector<std::string>& steps)
        : m_steps(steps)
    {
    }

    Device microphone;
    Device camera;
    Device systemAudio;

    SideRecorderFactories factories()
    {
        const auto factory = [this](Device& device) {
            return [this, &device] { return std::make_unique<Recorder>(m_steps, device); };
        };
        return {
            .microphone = factory(microphone),
            .camera = factory(camera),
            .systemAudio = factory(systemAudio)};
    }

private:
    class Recorder final : public SideRecorder {
    public:
        Recorder(std::vector<std::string>& steps, Device& device)
            : m_steps(steps)
            , m_device(device)
        {
        }
        void start(
            const std::filesystem::path& file, const std::optional<std::string>& deviceID) override
        {
            m_name = file.filename().string();
            m_device.deviceID = deviceID;
            writeFile(file, "sound");
            if (m_device.failure) {
                throw Error(*m_device.failure);
            }
            m_steps.push_back(m_name + " on");
        }
        std::optional<double> stop() noexcept override
        {
            m_steps.push_back(m_name + " off");
            return m_device.start;
        }
        std::optional<double> startTime() const override { return m_device.start; }

    private:
        std::vector<std::string>& m_steps;
        Device& m_device;
        std::string m_name;
    };

    std::vector<std::string>& m_steps;
};

} // namespace zento
