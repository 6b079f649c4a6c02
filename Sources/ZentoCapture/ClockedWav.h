#pragma once

#include "ZentoCapture/SoundPlacement.h"
#include "ZentoMedia/SoundConverter.h"
#include "ZentoMedia/WavWriter.h"

#include <atomic>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace zento {

/// Sound as a device gave it.
struct TimedSound {
    double time = 0; // seconds of CLOCK_MONOTONIC: when the first sample was heard
    int sampleRate = 0;
    AudioBlock channels;
};

/// A WAV file of what a device gives, in step with CLOCK_MONOTONIC (see `SoundClock`): the sample
/// that was heard s seconds after the first lies s seconds into the file.
///
/// The file comes into being with the first sound, in that sound's own rate and channels, as
/// floats; later sound of another format is converted to it. The first failure ends the file:
/// nothing that comes later is looked at.
///
/// Threading: used by one thread at a time, but for `startTime`.
class ClockedWav {
public:
    /// Removes a file that is there, if it can be.
    explicit ClockedWav(std::filesystem::path path);

    void append(const TimedSound& sound) noexcept;

    /// Closes the file. The time of the first sample, or nothing if there is no file or no whole
    /// one.
    std::optional<double> finish() noexcept;

    /// The time of the first sample, once there is one. Any thread.
    std::optional<double> startTime() const;

private:
    struct File {
        File(const std::filesystem::path& path, const WavFormat& format)
            : writer(path, format)
            , converter(path, format.sampleRate, format.channelCount)
            , clock(format.sampleRate)
        {
        }

        WavWriter writer;
        SoundConverter converter;
        SoundClock clock;
    };

    void write(const TimedSound& sound);
    AudioBlock inFormat(const TimedSound& sound);
    void writeSilence(std::size_t length);
    void writeStretched(AudioBlock block, int stretch);

    std::filesystem::path m_path;
    std::unique_ptr<File> m_file; // none before the first sound
    std::atomic<double> m_startTime = std::numeric_limits<double>::quiet_NaN(); // not yet
    bool m_hasFailed = false;
    std::vector<std::vector<float>> m_planes; // scratch
    std::vector<std::span<const float>> m_views;
};

} // namespace zento
