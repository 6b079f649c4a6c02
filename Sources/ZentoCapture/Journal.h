#pragma once

#include "ZentoCapture/JournalText.h"
#include "ZentoCore/FileDescriptor.h"

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>

namespace zento {

/// "journal.jsonl" of a bundle: it is there exactly as long as the bundle is not complete.
std::filesystem::path journalURL(const std::filesystem::path& bundle);

/// Gives back the room that a journal which was cut short still has beyond its end.
void giveRoomBack(const FileDescriptor& journal) noexcept;

/// Holds a bundle's journal for one program, which works on the bundle meanwhile; the system lets
/// go of it when the program ends in whatever way.
///
/// Nothing if another program holds it. Throws the system's error, ENOENT where there is no
/// journal.
std::optional<FileDescriptor> lockJournal(const std::filesystem::path& bundle);

/// Keeps on disk what a recording otherwise has in memory alone, so that a bundle can be made of
/// one whose process was killed: appended twice a second, on the thread "capture.journal", and sent
/// on to the disk.
///
/// Room for what is made of it in the end is set aside on the disk, so that the bundle of a
/// recording that filled the disk can be completed.
///
/// A journal that cannot be written costs a warning, never the recording.
///
/// Threading: `finish` and the destructor by one thread, all else is safe.
class Journal {
public:
    struct News {
        EventNews events;                  // since the last time
        std::map<SideFile, double> starts; // of all files whose first sample was taken, host time
    };
    using NewsSource = std::function<News()>;

    /// Creates the file in a folder that exists and holds it. `news`: called on the journal's
    /// thread. Throws the system's error.
    Journal(const std::filesystem::path& bundle, const SessionMeta& facts, NewsSource news);

    /// Finishes it and leaves the file, for a recovery.
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// The first call counts.
    void setEpoch(double hostTime);

    /// Appends what there is, and nothing later, and gives back the room that was set aside. The
    /// file stays held.
    void finish();

private:
    void run(const std::stop_token& stop);
    void append(const std::string& text);
    void keepRoom(std::int64_t byteCount);
    std::string text(const News& news);

    std::filesystem::path m_path;
    FileDescriptor m_file; // held locked to the end
    bool m_hasFailed = false;
    std::int64_t m_size = 0;    // of the file
    std::int64_t m_roomEnd = 0; // what was set aside ends here
    NewsSource m_news;
    std::map<SideFile, double> m_toldStarts; // the journal's thread alone
    std::mutex m_mutex;                      // guards the three below
    std::string m_notes;
    bool m_hasEpoch = false;
    bool m_isUrgent = false; // what the notes say
    std::condition_variable_any m_wake;
    std::jthread m_thread;
};

} // namespace zento
