#include "ZentoCore/UserFolders.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/Text.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>

namespace zento {

namespace {

/// An environment variable that holds an absolute path; the conventions ignore any other value.
std::optional<std::filesystem::path> folderVariable(const char* name)
{
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing here sets it
    if (value == nullptr || *value != '/') {
        return std::nullopt;
    }
    return value;
}

std::string unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            ++i;
        }
        result += text[i];
    }
    return result;
}

} // namespace

std::filesystem::path userHomeFolder()
{
    if (const auto home = folderVariable("HOME")) {
        return *home;
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): without HOME, once, before other threads
    const passwd* user = ::getpwuid(::getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : ".";
}

std::filesystem::path userConfigFolder()
{
    return folderVariable("XDG_CONFIG_HOME").value_or(userHomeFolder() / ".config");
}

std::filesystem::path userDataFolder()
{
    return folderVariable("XDG_DATA_HOME").value_or(userHomeFolder() / ".local/share");
}

std::filesystem::path userCacheFolder()
{
    return folderVariable("XDG_CACHE_HOME").value_or(userHomeFolder() / ".cache");
}

std::filesystem::path userStateFolder()
{
    return folderVariable("XDG_STATE_HOME").value_or(userHomeFolder() / ".local/state");
}

std::filesystem::path userVideosFolder()
{
    if (const auto folder = folderVariable("XDG_VIDEOS_DIR")) {
        return *folder;
    }
    try {
        const std::string text = readFile(userConfigFolder() / "user-dirs.dirs");
        const auto folder = userDirectory(text, "XDG_VIDEOS_DIR", userHomeFolder());
        if (!folder.empty()) {
            return folder;
        }
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): most desktops without it are fine
    }
    return userHomeFolder() / "Videos";
}

std::filesystem::path
userDirectory(std::string_view text, std::string_view key, const std::filesystem::path& home)
{
    std::filesystem::path result;
    while (!text.empty()) {
        const std::string_view line = trimmed(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
        const std::size_t quote = key.size() + 1;
        const bool matches = line.starts_with(key) && line.size() > quote + 1
                             && line[key.size()] == '=' && line[quote] == '"'
                             && line.ends_with('"');
        if (!matches) {
            continue;
        }
        const std::string value = unescaped(line.substr(quote + 1, line.size() - quote - 2));
        if (value.starts_with("$HOME/")) {
            result = home / value.substr(6);
        } else if (value.starts_with('/')) {
            result = value;
        }
    }
    return result;
}

} // namespace zento
