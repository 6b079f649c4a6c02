#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stop_token>

namespace zento {

/// A movie of a `ProResWriter`, or another of one track in the same form, whose writing may have
/// been cut short at any point.
///
/// Threading: used by one thread at a time.
class MovieRecovery {
public:
    /// Reads the whole of a movie that was cut short; the index of one that was not.
    ///
    /// Throws `Error`: the system's error, naming the file; code `kReadingFailed` for what is no
    /// such movie or holds no whole picture; `kCancelled`.
    explicit MovieRecovery(const std::filesystem::path& path, const std::stop_token& stop = {});
    ~MovieRecovery();
    MovieRecovery(const MovieRecovery&) = delete;
    MovieRecovery& operator=(const MovieRecovery&) = delete;

    bool wasFinished() const;
    std::int64_t frameCount() const; // whole pictures, at least 1
    double lastTime() const;         // of the last whole picture, in seconds

    /// Makes an ordinary movie of it, with all whole pictures, as `ProResWriter::finish` would have
    /// done; it is then on the disk. Does nothing to one that was finished. Until the last of its
    /// writes the file stays what it was to its readers, so that being ended here does no harm.
    /// To be called once. Throws the system's error, naming the file.
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
