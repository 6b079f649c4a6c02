#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zento {

/// One recording of the library.
struct SessionItem {
    std::filesystem::path url; // the bundle's folder
    std::optional<std::string> title;
    std::chrono::system_clock::time_point date; // the folder's creation; `kNoDate` if unknown
    double duration = 0;                        // seconds
    std::optional<std::string> appName;
    bool hasRender = false; // the film beside the bundle exists

    static constexpr std::chrono::system_clock::time_point kNoDate{};

    bool operator==(const SessionItem&) const = default;
};

/// The title without blanks at its ends; nothing where that leaves nothing.
std::optional<std::string> shownTitle(const SessionItem& item);

/// The film of a recording lies beside its bundle.
std::filesystem::path filmOf(const std::filesystem::path& bundle);

/// A folder that may be a recording.
struct SessionFolder {
    std::filesystem::path url;
    std::chrono::system_clock::time_point date;
};

/// The folders of recordings in a folder, the newest first; those of one date in the order of the
/// listing. Empty where it cannot be read. Blocks on the disk.
std::vector<SessionFolder> sessionFolders(const std::filesystem::path& folder);

/// The recording of a folder; nothing without a "meta.json" that decodes. Blocks on the disk.
std::optional<SessionItem> readSession(const SessionFolder& folder);

/// The bundle without a "meta.json" that was created last: what a recording that did not finish
/// left behind. On a tie the first of the listing.
std::optional<std::filesystem::path> newestOrphanBundle(const std::filesystem::path& folder);

/// When a file or folder was created; `kNoDate` where the system does not say.
std::chrono::system_clock::time_point creationDate(const std::filesystem::path& path);

/// Stores a recording's title; absent where the text is blank. Throws `Error`.
void storeTitle(const std::filesystem::path& bundle, const std::string& text);

} // namespace zento
