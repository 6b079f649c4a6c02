#pragma once

#include "ZentoCore/FileDescriptor.h"
#include "ZentoMedia/AudioReader.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace zento {

/// Writes sound as it comes: a WAV file of 16-bit samples.
///
/// Threading: used by one thread at a time.
class WavWriter {
public:
    /// Creates the file, replacing one that exists. `sampleRate` in samples per second, [1, ∞);
    /// `channelCount` [1, 65535].
    ///
    /// Throws `Error`: the system's error, naming the file.
    WavWriter(std::filesystem::path path, int sampleRate, int channelCount);

    /// Adds a stretch of as many channels; what is beyond full scale is limited to it.
    ///
    /// Throws `Error`: the system's error, naming the file; EFBIG where the format ends, at 4 GiB.
    void append(AudioBlock block);

    /// Tells the file its length. To be called once. Throws as `append`.
    void finish();

private:
    void write(const void* bytes, std::size_t count);
    void writeHeader();

    std::filesystem::path m_path;
    FileDescriptor m_file;
    int m_sampleRate;
    int m_channelCount;
    std::uint64_t m_sampleBytes = 0;
    std::vector<std::int16_t> m_interleaved;
};

} // namespace zento
