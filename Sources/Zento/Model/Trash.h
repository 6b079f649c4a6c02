#pragma once

#include <filesystem>

/// The desktop's trash. Blocks on the disk.
namespace zento::Trash {

struct Entry {
    std::filesystem::path original;
    std::filesystem::path trashed; // where it lies now
};

/// Throws `Error` with the reason.
Entry put(const std::filesystem::path& path);

/// Puts it back where it was. Throws `Error` when something else lies there now, or when it is no
/// longer in the trash.
void restore(const Entry& entry);

} // namespace zento::Trash
