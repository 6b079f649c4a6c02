#include "ZentoCapture/Journal.h"

#include "ZentoCapture/ThreadName.h"
#include "ZentoCore/Error.h"

#include <fcntl.h>
#include <sys/file.h>
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

Journal::Journal(const std::filesystem::path& bundle, const SessionMeta& facts, NewsSource news)
    : m_path(journalURL(bundle))
    , m_file(open(m_path, O_CREAT | O_TRUNC | O_APPEND))
    , m_news(std::move(news))
{
    lock(m_file);
    append(JournalText::facts(facts));
    m_thread = std::jthread([this](const std::stop_token& stop) { run(stop); });
}

Journal::~Journal() = default;

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
    if (const int errorNumber = write(m_file.get(), text); errorNumber != 0) {
        const Error error = systemError("cannot write", m_path.string(), errorNumber);
        std::cerr << "warning: the recording's journal: " << error.what() << '\n';
        m_hasFailed = true;
    }
}

} // namespace zento
