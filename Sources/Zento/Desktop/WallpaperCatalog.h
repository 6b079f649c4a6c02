#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace zento {

/// A picture the desktop offers as its background.
struct Wallpaper {
    std::filesystem::path path;
    std::string name; // shown to the user, from the file's name
    bool operator==(const Wallpaper&) const = default;
};

namespace WallpaperCatalog {

/// The folders that hold the desktop's pictures, by the XDG base directory convention: the
/// "backgrounds" of the user's data folder, then those of the system's. They need not exist.
std::vector<std::filesystem::path> folders();

/// The pictures in these folders and the folders below them, sorted by name. Of those that lead to
/// the same file one is left, and at most `kMost` in all. What cannot be read is left out.
std::vector<Wallpaper> wallpapers(std::span<const std::filesystem::path> folders);

inline constexpr std::size_t kMost = 200;

} // namespace WallpaperCatalog
} // namespace zento
