#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

struct AVIOContext;

namespace zento::ffmpeg {

class DiskSync;

/// The file under a container's writer. It remembers the first failed write, wherever in the
/// library it happened, and can set disk space aside for what must still fit in the end.
///
/// Threading: used by one thread at a time.
class OutputFile {
public:
    /// Creates or empties the file. Throws the system's error.
    explicit OutputFile(const std::filesystem::path& path);

    /// Opens a file that exists, cuts it off at `size` and goes on there. Throws the system's
    /// error.
    OutputFile(const std::filesystem::path& path, std::int64_t size);

    /// Closes the file as it is; failures go unnoticed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    AVIOContext* io() const { return m_io; }

    /// Makes sure that writing to the end of `byteCount` more bytes from here will find room.
    /// Throws the system's error if it will not. Does nothing on a filesystem that cannot tell.
    void keepRoom(std::int64_t byteCount);

    /// Has a thread of its own ("file.sync") send what was flushed on to the disk; returns at once.
    /// A failure is told by the next `sync` or by `close`.
    void syncSoon();

    /// Writes out what is buffered and returns when the disk has it. Throws the system's error.
    void sync();

    /// Throws the system's error if any write up to here failed.
    void check() const;

    /// Writes out what is buffered, gives back the room that was not used, and closes the file.
    /// Throws the system's error if that or any write before failed, and ENOENT if the file was
    /// removed meanwhile.
    void close();

private:
    static int writeCallback(void* file, std::uint8_t* bytes, int count);
    static std::int64_t seekCallback(void* file, std::int64_t offset, int whence);
    int write(const std::uint8_t* bytes, int count);
    std::int64_t seek(std::int64_t offset, int whence);
    void open(int flags);
    void release();

    std::filesystem::path m_path;
    int m_descriptor = -1;
    AVIOContext* m_io = nullptr;
    std::int64_t m_position = 0;
    std::int64_t m_size = 0;
    std::int64_t m_roomEnd = 0; // what was set aside ends here
    bool m_canKeepRoom = true;
    int m_errorNumber = 0; // of the first write that failed
    std::unique_ptr<DiskSync> m_sync;
};

} // namespace zento::ffmpeg
