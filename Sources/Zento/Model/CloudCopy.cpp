#include "Zento/Model/CloudCopy.h"

#include "ZentoCore/Error.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace zento {

namespace {

/// What sync clients call their folder by default.
constexpr std::array<std::string_view, 5> kUsualFolders{
    "Nextcloud", "ownCloud", "Dropbox", "OneDrive", "Sync"};

void require(const std::error_code& error, const std::filesystem::path& path)
{
    if (error) {
        throw systemError("could not write", path.string(), error.value());
    }
}

} // namespace

std::string cloudFileName(std::string_view name)
{
    std::string file(name);
    std::ranges::replace(file, '/', '-');
    return file + ".mp4";
}

std::optional<std::filesystem::path>
syncedFolder(const std::filesystem::path& chosen, const std::filesystem::path& home)
{
    std::error_code ignored;
    if (!chosen.empty()) {
        return std::filesystem::is_directory(chosen, ignored) ? std::optional(chosen)
                                                              : std::nullopt;
    }
    for (const std::string_view name : kUsualFolders) {
        if (std::filesystem::is_directory(home / name, ignored)) {
            return home / name;
        }
    }
    return std::nullopt;
}

std::filesystem::path copyToCloud(
    const std::filesystem::path& film,
    const std::filesystem::path& syncedFolder,
    std::string_view name)
{
    const std::filesystem::path folder = syncedFolder / "Zento";
    const std::filesystem::path target = folder / cloudFileName(name);
    const std::filesystem::path partial = folder / ("." + cloudFileName(name) + ".part");
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    require(error, folder);
    std::filesystem::copy_file(
        film, partial, std::filesystem::copy_options::overwrite_existing, error);
    if (!error) {
        std::filesystem::rename(partial, target, error);
    }
    if (error) {
        std::error_code ignored;
        std::filesystem::remove(partial, ignored);
    }
    require(error, target);
    return target;
}

} // namespace zento
