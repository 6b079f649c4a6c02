#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace zento {

/// What stereo sound is encoded as.
struct SoundFormat {
    int sampleRate = 44100;        // one that AAC knows, up to 96000
    std::int64_t bitRate = 256000; // bits per second on average, [8000, ∞)
};

/// Writes stereo sound as AAC-LC in an M4A file. An edit list hides the encoder's lead-in, so that
/// sample n is heard at n / sampleRate seconds.
///
/// Nothing but `finish` completes the file, and nothing here ever deletes it.
///
/// Threading: used by one thread at a time.
class AacWriter {
public:
    /// Creates the file, replacing one that exists.
    ///
    /// Throws `Error`: the system's error, naming the file, if it cannot be written; code
    /// `kWriterNotStarted` for a format the encoder refuses.
    AacWriter(const std::filesystem::path& path, const SoundFormat& format);

    /// Without `finish` the file is left as it is, unreadable.
    ~AacWriter();
    AacWriter(AacWriter&&) noexcept;
    AacWriter& operator=(AacWriter&&) noexcept;

    /// Encodes the next samples, of one length in both channels, full scale at ±1.
    ///
    /// Throws `Error`: the system's error, naming the file, if it cannot be written; else code
    /// `kAppendRefused`.
    void append(std::span<const float> left, std::span<const float> right);

    /// Encodes what waits, completes the file and closes it. To be called once.
    ///
    /// Throws `Error`: the system's error, naming the file, if it cannot be written; else code
    /// `kFilmNotFinished`, also for a file without a sample.
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
