#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace zento {

/// Bytes that a user may still write where a folder is or would be made. Nothing where the system
/// does not say. Blocks on the disk.
std::optional<std::int64_t> freeSpace(const std::filesystem::path& folder);

} // namespace zento
