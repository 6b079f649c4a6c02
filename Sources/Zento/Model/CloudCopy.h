#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace zento {

/// The file name a film has in a synced folder: its name with every "/" replaced, and ".mp4".
std::string cloudFileName(std::string_view name);

/// The folder that the user's files are synced from: the chosen one, or without one the first of
/// the usual ones in the home folder. Nothing if it does not exist. Blocks on the disk.
std::optional<std::filesystem::path>
syncedFolder(const std::filesystem::path& chosen, const std::filesystem::path& home);

/// Copies a film into "Zento" in the synced folder, in the place of one of that name. Whoever looks
/// never sees half of it under its name. Returns the copy. Throws `Error`. Blocks on the disk.
std::filesystem::path copyToCloud(
    const std::filesystem::path& film,
    const std::filesystem::path& syncedFolder,
    std::string_view name);

} // namespace zento
