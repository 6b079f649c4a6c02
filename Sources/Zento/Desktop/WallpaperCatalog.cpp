#include "Zento/Desktop/WallpaperCatalog.h"

#include "ZentoCore/UserFolders.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <set>
#include <string_view>
#include <system_error>

namespace zento::WallpaperCatalog {
namespace {

namespace fs = std::filesystem;

std::string environment(const char* name)
{
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nobody changes it
    return value ? value : "";
}

bool isPicture(const fs::path& path)
{
    constexpr std::array<std::string_view, 5> kExtensions = {
        ".jpg", ".jpeg", ".png", ".webp", ".svg"};
    std::string extension = path.extension().string();
    std::ranges::transform(
        extension, extension.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return std::ranges::find(kExtensions, extension) != kExtensions.end();
}

/// "adwaita-l" is "Adwaita l": a file's name as words.
std::string nameOf(const fs::path& path)
{
    std::string name = path.stem().string();
    std::ranges::replace_if(name, [](char c) { return c == '-' || c == '_'; }, ' ');
    if (!name.empty())
        name.front() = char(std::toupper(static_cast<unsigned char>(name.front())));
    return name;
}

} // namespace

std::vector<fs::path> folders()
{
    const std::string own = environment("XDG_DATA_HOME");
    std::vector<fs::path> result = {
        (own.empty() ? userHomeFolder() / ".local/share" : fs::path(own)) / "backgrounds"};
    std::string system = environment("XDG_DATA_DIRS");
    if (system.empty())
        system = "/usr/local/share:/usr/share";
    for (std::size_t begin = 0; begin <= system.size();) {
        const std::size_t end = std::min(system.find(':', begin), system.size());
        if (end > begin)
            result.push_back(fs::path(system.substr(begin, end - begin)) / "backgrounds");
        begin = end + 1;
    }
    return result;
}

std::vector<Wallpaper> wallpapers(std::span<const fs::path> folders)
{
    std::vector<Wallpaper> found;
    std::set<fs::path> seen;
    for (const fs::path& folder : folders) {
        std::error_code error;
        const auto options = fs::directory_options::skip_permission_denied;
        fs::recursive_directory_iterator entry(folder, options, error);
        for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
            std::error_code failure;
            if (!isPicture(entry->path()) || !entry->is_regular_file(failure))
                continue;
            const fs::path file = fs::canonical(entry->path(), failure);
            if (!failure && seen.insert(file).second)
                found.push_back({entry->path(), nameOf(entry->path())});
        }
    }
    std::ranges::stable_sort(found, {}, &Wallpaper::name);
    if (found.size() > kMost)
        found.resize(kMost);
    return found;
}

} // namespace zento::WallpaperCatalog
