#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
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

/// The recordings of a folder, newest first; those of one date in the order of the folder's
/// listing. Folders without a "meta.json" that decodes are left out, and so is all of a folder that
/// cannot be read.
///
/// `known` are items of an earlier listing, which are taken over where the bundle's "meta.json" is
/// older than that listing. Blocks on the disk; hands over what it has in parts of at most
/// `partSize`, in order. Returns false when stopped.
bool listSessions(
    const std::filesystem::path& folder,
    std::size_t partSize,
    const std::function<void(std::vector<SessionItem>)>& part,
    const std::stop_token& stop = {});

/// The bundle without a "meta.json" that was created last: what a recording that did not finish
/// left behind. On a tie the first of the listing.
std::optional<std::filesystem::path> newestOrphanBundle(const std::filesystem::path& folder);

/// When a file or folder was created; `kNoDate` where the system does not say.
std::chrono::system_clock::time_point creationDate(const std::filesystem::path& path);

/// Stores a recording's title; absent where the text is blank. Throws `Error`.
void storeTitle(const std::filesystem::path& bundle, const std::string& text);

} // namespace zento
