#include "ZentoMedia/Ffmpeg/OutputFile.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/DiskSync.h"

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace zento::ffmpeg {

namespace {

constexpr int kBufferBytes = 1 << 20;

// Room is set aside in steps, so that the filesystem is not asked for every picture.
constexpr std::int64_t kRoomStep = 16 << 20;

// What the process may write at all (`ulimit -f`); beyond it a write would end the process.
std::int64_t sizeLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return INT64_MAX;
    return static_cast<std::int64_t>(std::min<rlim_t>(limit.rlim_cur, INT64_MAX));
}

bool meansNotSupported(int errorNumber)
{
    return errorNumber == EOPNOTSUPP || errorNumber == ENOSYS || errorNumber == EINVAL
           || errorNumber == ENODEV || errorNumber == ESPIPE || errorNumber == EPERM;
}

int allocate(int descriptor, std::int64_t begin, std::int64_t end)
{
    int result = 0;
    do {
        result = fallocate(descriptor, FALLOC_FL_KEEP_SIZE, begin, end - begin);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

} // namespace

OutputFile::OutputFile(const std::filesystem::path& path)
    : m_path(path)
{
    open(O_CREAT | O_TRUNC);
}

OutputFile::OutputFile(const std::filesystem::path& path, std::int64_t size)
    : m_path(path)
    , m_size(size)
    , m_roomEnd(size)
{
    open(0);
    if (ftruncate(m_descriptor, size) != 0) {
        const int errorNumber = errno;
        release();
        throw systemError("Could not write", m_path.string(), errorNumber);
    }
    avio_seek(m_io, size, SEEK_SET);
}

void OutputFile::open(int flags)
{
    constexpr mode_t kMode = 0666; // less the user's mask
    m_descriptor = ::open(m_path.c_str(), O_WRONLY | O_CLOEXEC | flags, kMode);
    if (m_descriptor < 0)
        throw systemError("Could not write", m_path.string(), errno);
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(kBufferBytes));
    if (buffer != nullptr)
        m_io = avio_alloc_context(
            buffer, kBufferBytes, 1, this, nullptr, &writeCallback, &seekCallback);
    if (m_io == nullptr) {
        av_free(buffer);
        ::close(std::exchange(m_descriptor, -1));
        throw std::bad_alloc();
    }
}

OutputFile::~OutputFile()
{
    release();
}

void OutputFile::keepRoom(std::int64_t byteCount)
{
    const std::int64_t needed = avio_tell(m_io) + byteCount;
    if (needed > sizeLimit())
        throw systemError("Could not write", m_path.string(), EFBIG);
    if (!m_canKeepRoom || needed <= m_roomEnd)
        return;
    for (const std::int64_t end : {needed + kRoomStep, needed}) {
        const int errorNumber = allocate(m_descriptor, m_roomEnd, end);
        if (errorNumber == 0) {
            m_roomEnd = end;
            return;
        }
        if (meansNotSupported(errorNumber)) {
            m_canKeepRoom = false;
            return;
        }
        if (end == needed)
            throw systemError("Could not write", m_path.string(), errorNumber);
    }
}

void OutputFile::syncSoon()
{
    if (!m_sync)
        m_sync = std::make_unique<DiskSync>(m_descriptor);
    m_sync->request();
}

void OutputFile::sync()
{
    avio_flush(m_io);
    int errorNumber = fdatasync(m_descriptor) == 0 ? 0 : errno;
    if (m_sync && errorNumber == 0)
        errorNumber = m_sync->errorNumber();
    if (m_errorNumber == 0 && errorNumber != EINVAL) // what is no file has nothing to send on
        m_errorNumber = errorNumber;
    check();
}

void OutputFile::check() const
{
    if (m_errorNumber != 0)
        throw systemError("Could not write", m_path.string(), m_errorNumber);
}

void OutputFile::close()
{
    if (m_descriptor < 0)
        return;
    avio_flush(m_io);
    if (m_roomEnd > m_size) {
        // The file is whole without it, so that a filesystem which cannot do this is no failure.
        [[maybe_unused]] const int ignored = ftruncate(m_descriptor, m_size);
    }
    m_sync.reset();
    struct stat status{};
    if (m_errorNumber == 0 && fstat(m_descriptor, &status) == 0 && status.st_nlink == 0)
        m_errorNumber = ENOENT; // nobody will ever find it
    // Some filesystems report a full disk only here.
    if (::close(std::exchange(m_descriptor, -1)) != 0 && m_errorNumber == 0)
        m_errorNumber = errno;
    release();
    check();
}

void OutputFile::release()
{
    m_sync.reset();
    if (m_io != nullptr)
        av_freep(static_cast<void*>(&m_io->buffer));
    avio_context_free(&m_io);
    if (m_descriptor >= 0)
        ::close(std::exchange(m_descriptor, -1));
}

int OutputFile::writeCallback(void* file, std::uint8_t* bytes, int count)
{
    return static_cast<OutputFile*>(file)->write(bytes, count);
}

std::int64_t OutputFile::seekCallback(void* file, std::int64_t offset, int whence)
{
    return static_cast<OutputFile*>(file)->seek(offset, whence);
}

int OutputFile::write(const std::uint8_t* bytes, int count)
{
    // Nothing is written behind a hole: the file ends where the first write failed.
    if (m_errorNumber != 0)
        return AVERROR(m_errorNumber);
    int done = 0;
    while (done < count) {
        const ssize_t written =
            pwrite(m_descriptor, bytes + done, static_cast<std::size_t>(count - done), m_position);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            m_errorNumber = written < 0 ? errno : ENOSPC;
            return AVERROR(m_errorNumber);
        }
        done += static_cast<int>(written);
        m_position += written;
        m_size = std::max(m_size, m_position);
    }
    return count;
}

std::int64_t OutputFile::seek(std::int64_t offset, int whence)
{
    if (whence == AVSEEK_SIZE)
        return m_size;
    if (whence != SEEK_SET)
        return AVERROR(EINVAL); // the library turns every other kind into this one
    m_position = offset;
    return offset;
}

} // namespace zento::ffmpeg
