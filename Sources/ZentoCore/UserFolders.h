#pragma once

#include <filesystem>
#include <string_view>

namespace zento {

// Where a user's files belong, by the XDG base directory and user-dirs conventions. Nothing is
// created. Without a home, the current folder stands in.

std::filesystem::path userHomeFolder();
std::filesystem::path userConfigFolder(); // $XDG_CONFIG_HOME, else ~/.config
std::filesystem::path userDataFolder();   // $XDG_DATA_HOME, else ~/.local/share
std::filesystem::path userCacheFolder();  // $XDG_CACHE_HOME, else ~/.cache
std::filesystem::path userStateFolder();  // $XDG_STATE_HOME, else ~/.local/state
std::filesystem::path
userVideosFolder(); // XDG_VIDEOS_DIR of the environment or user-dirs.dirs, else ~/Videos

/// The folder that a user-dirs.dirs text names for a key such as "XDG_VIDEOS_DIR"; empty if none.
/// Values are quoted and absolute or below $HOME, as the format demands.
std::filesystem::path
userDirectory(std::string_view text, std::string_view key, const std::filesystem::path& home);

} // namespace zento
