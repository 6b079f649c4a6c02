#pragma once

#include "ZentoCore/FileDescriptor.h"
#include "ZentoMedia/AudioReader.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zento {

/// How a WAV file keeps its samples. Floats keep what is beyond full scale; integers take half the
/// room, and what is beyond full scale is limited to it.
enum class WavSamples : unsigned char { Integer16, Float32 };

struct WavFormat {
    int sampleRate = 48000; // samples per second, [1, ∞)
    int channelCount = 1;   // [1, 65535]
    WavSamples samples = WavSamples::Integer16;

    bool operator==(const WavFormat&) const = default;
};

/// What stands in front of the samples, of the same length for every `sampleBytes`. A file of
/// 4 GiB and more is an RF64 file (EBU Tech 3306): its true sizes take the place of a chunk of
/// filling.
std::string wavHeader(const WavFormat& format, std::uint64_t sampleBytes);

/// Writes sound as it comes: a WAV file.
///
/// The header is brought up to date after every second of sound, so a process that dies leaves a
/// file that can be read up to its last second.
///
/// Threading: used by one thread at a time.
class WavWriter {
public:
    /// Creates the file, replacing one that exists.
    ///
    /// Throws `Error`: the system's error, naming the file.
    WavWriter(std::filesystem::path path, const WavFormat& format);

    /// Adds a stretch of as many channels.
    ///
    /// Throws `Error`: the system's error, naming the file.
    void append(AudioBlock block);

    /// Tells the file its length. To be called once. Throws as `append`.
    void finish();

    const WavFormat& format() const { return m_format; }

private:
    std::size_t frameBytes() const;
    template <typename Sample, typename Convert>
    void interleave(AudioBlock block, Convert convert);
    void updateHeader();

    std::filesystem::path m_path;
    FileDescriptor m_file;
    WavFormat m_format;
    std::uint64_t m_headerBytes = 0; // in the file
    std::uint64_t m_sampleBytes = 0; // behind them
    std::uint64_t m_toldBytes = 0;   // of those, what the header says
    std::vector<std::byte> m_interleaved;
};

} // namespace zento
