#include "Zento/Demo/Programs.h"

#include "ZentoCore/Error.h"

#include <unistd.h>

#include <cstdlib>
#include <ranges>

namespace zento {

namespace fs = std::filesystem;

std::optional<fs::path> findProgram(std::string_view name, std::string_view searchPath)
{
    for (const auto part : std::views::split(searchPath, ':')) {
        const std::string_view folder(part.begin(), part.end());
        if (folder.empty()) {
            continue;
        }
        fs::path candidate = fs::path(folder) / name;
        std::error_code ignored;
        if (fs::is_regular_file(candidate, ignored) && access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::string programSearchPath()
{
    const char* path = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): read only
    return path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
}

fs::path
requireProgram(std::string_view name, std::string_view package, std::string_view searchPath)
{
    if (auto program = findProgram(name, searchPath)) {
        return *std::move(program);
    }
    throw Error(
        ErrorCode::kProgramMissing,
        "the demo needs " + std::string(name) + "; install the package " + std::string(package));
}

} // namespace zento
