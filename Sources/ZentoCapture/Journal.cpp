#include "ZentoCapture/Journal.h"

#include "ZentoCapture/ThreadName.h"
#include "ZentoCore/Error.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iostream>
#include <string_view>
#include <utility>

namespace zento {

namespace {

// What a cut may cost of the log; the movie's fragments are as long.
constexpr std::chrono::milliseconds kInterval(500);

// "events.jsonl" is about as long as the journal; what comes on top is "meta.json" and the news of
// the time until somebody notices that the disk is full.
constexpr std::int64_t kRoomFactor = 2;
constexpr std::int64_t kSpareRoom = 128 << 10;

FileDescriptor open(const std::filesystem::path& path, int flags)
{
    constexpr mode_t kMode = 0666; // less the user's mask
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC | flags, kMode));
    if (file.get() < 0) {
        throw systemError("cannot write", path.string(), errno);
    }
    return file;
}

/// False if another program holds it. A filesystem without locks cannot tell.
bool lock(const FileDescriptor& file)
{
    return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// 0, or the system's number of the error.
int write(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return ::fdatasync(file) == 0 ? 0 : errno;
}

} // namespace

std::filesystem::path journalURL(const std::filesystem::path& bundle)
{
    return bundle / "journal.jsonl";
}

std::optional<FileDescriptor> lockJournal(const std::filesystem::path& bundle)
{
    FileDescriptor file = open(journalURL(bundle), 0);
    return lock(file) ? std::optional(std::move(file)) : std::nullopt;
}

void giveRoomBack(const FileDescriptor& journal) noexcept
{
    struct stat status{};
    if (::fstat(journal.get(), &status) == 0) {
        [[maybe_unused]] const int ignored = ::ftruncate(journal.get(), status.st_size);
    }
}

Journal::Journal(const std::filesystem::path& bundle, const SessionMeta& facts, NewsSource news)
    : m_path(journalURL(bundle))
    , m_file(open(m_path, O_CREAT | O_TRUNC | O_APPEND))
    , m_news(std::move(news))
{
    lock(m_file);
    append(JournalText::facts(facts));
    m_thread = std::jthread([this](const std::stop_token& stop) { run(stop); });
}

Journal::~Journal()
{
    finish();
}

void Journal::finish()
{
    if (m_thread.joinable()) {
        m_thread.request_stop();
        m_thread.join();
        giveRoomBack(m_file);
    }
}

void Journal::setEpoch(double hostTime)
{
    const std::lock_guard lock(m_mutex);
    if (!m_hasEpoch) {
        m_hasEpoch = true;
        m_notes += JournalText::epoch(hostTime);
        m_isUrgent = true; // without it nothing can be recovered
        m_wake.notify_one();
    }
}

void Journal::run(const std::stop_token& stop)
{
    nameThread("capture.journal");
    for (bool isLast = false; !isLast;) {
        std::string notes;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait_for(lock, stop, kInterval, [this] { return m_isUrgent; });
            m_isUrgent = false;
            notes = std::exchange(m_notes, {});
        }
        isLast = stop.stop_requested();
        append(notes + text(m_news()));
    }
}

std::string Journal::text(const News& news)
{
    std::string text;
    for (const auto& [file, hostTime] : news.starts) {
        const auto told = m_toldStarts.find(file);
        if (told == m_toldStarts.end() || told->second != hostTime) {
            m_toldStarts[file] = hostTime;
            text += JournalText::start(file, hostTime);
        }
    }
    return text + JournalText::news(news.events);
}

/// A line that is torn ends the journal: what would follow could not be read.
void Journal::append(const std::string& text)
{
    if (m_hasFailed || text.empty()) {
        return;
    }
    m_size += static_cast<std::int64_t>(text.size());
    keepRoom(kRoomFactor * m_size + kSpareRoom);
    if (const int errorNumber = write(m_file.get(), text); errorNumber != 0) {
        const Error error = systemError("cannot write", m_path.string(), errorNumber);
        std::cerr << "warning: the recording's journal: " << error.what() << '\n';
        m_hasFailed = true;
    }
}

/// Where the filesystem cannot, or has no more, the journal goes on without.
void Journal::keepRoom(std::int64_t byteCount)
{
    if (byteCount > m_roomEnd) {
        const std::int64_t end = byteCount + kSpareRoom; // not for every line
        if (::fallocate(m_file.get(), FALLOC_FL_KEEP_SIZE, 0, end) == 0) {
            m_roomEnd = end;
        }
    }
}

} // namespace zento
