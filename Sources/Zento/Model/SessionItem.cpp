#include "Zento/Model/SessionItem.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoCore/Text.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <system_error>

namespace zento {

namespace {

std::vector<std::filesystem::path> bundlesIn(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> bundles;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        if (entry->path().extension() == ".zento") {
            bundles.push_back(entry->path());
        }
        entry.increment(error);
    }
    return bundles;
}

} // namespace

std::optional<std::string> shownTitle(const SessionItem& item)
{
    const std::string_view text = item.title ? trimmed(*item.title) : std::string_view();
    return text.empty() ? std::nullopt : std::optional(std::string(text));
}

std::filesystem::path filmOf(const std::filesystem::path& bundle)
{
    return SessionBundle{.url = bundle}.filmURL();
}

std::chrono::system_clock::time_point creationDate(const std::filesystem::path& path)
{
    struct statx facts{};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &facts) != 0
        || (facts.stx_mask & STATX_BTIME) == 0) {
        return SessionItem::kNoDate;
    }
    return std::chrono::system_clock::time_point(
        std::chrono::seconds(facts.stx_btime.tv_sec)
        + std::chrono::nanoseconds(facts.stx_btime.tv_nsec));
}

std::vector<SessionFolder> sessionFolders(const std::filesystem::path& folder)
{
    std::vector<SessionFolder> found;
    for (std::filesystem::path& bundle : bundlesIn(folder)) {
        const auto date = creationDate(bundle);
        found.push_back({std::move(bundle), date});
    }
    std::ranges::stable_sort(found, std::ranges::greater(), &SessionFolder::date);
    return found;
}

std::optional<SessionItem> readSession(const SessionFolder& folder)
{
    try {
        const SessionBundle bundle{.url = folder.url};
        const SessionMeta meta = decodeMeta(readFile(bundle.metaURL()));
        std::error_code ignored;
        return SessionItem{
            .url = folder.url,
            .title = meta.title,
            .date = folder.date,
            .duration = meta.duration,
            .appName = meta.appName,
            .hasRender = std::filesystem::exists(bundle.filmURL(), ignored)};
    } catch (const Error&) {
        return std::nullopt;
    }
}

std::optional<std::filesystem::path> newestOrphanBundle(const std::filesystem::path& folder)
{
    for (const SessionFolder& candidate : sessionFolders(folder)) {
        std::error_code error;
        if (!std::filesystem::exists(candidate.url / "meta.json", error) && !error) {
            return candidate.url;
        }
    }
    return std::nullopt;
}

void storeTitle(const std::filesystem::path& bundle, const std::string& text)
{
    const SessionBundle named{.url = bundle};
    SessionMeta meta = parseFile(named.metaURL(), decodeMeta);
    const std::string_view title = trimmed(text);
    meta.title = title.empty() ? std::nullopt : std::optional(std::string(title));
    writeFile(named.metaURL(), encodeMeta(meta));
}

} // namespace zento
