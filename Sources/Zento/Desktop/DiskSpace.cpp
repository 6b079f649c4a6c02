#include "Zento/Desktop/DiskSpace.h"

#include <system_error>
#include <utility>

namespace zento {

std::optional<std::int64_t> freeSpace(const std::filesystem::path& folder)
{
    std::filesystem::path existing = folder;
    std::error_code error;
    while (!std::filesystem::exists(existing, error) && existing.has_relative_path()) {
        existing = existing.parent_path();
    }
    const std::filesystem::space_info space = std::filesystem::space(existing, error);
    if (error || !std::in_range<std::int64_t>(space.available)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(space.available);
}

} // namespace zento
