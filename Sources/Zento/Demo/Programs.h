#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace zento {

/// Where the executable `name` stands in the folders of `searchPath` (the syntax of PATH), the
/// first of them winning.
std::optional<std::filesystem::path>
findProgram(std::string_view name, std::string_view searchPath);

/// The PATH of this process; a usual one where there is none.
std::string programSearchPath();

/// `findProgram`, or the `Error` kProgramMissing "the demo needs {name}; install the package
/// {package}".
std::filesystem::path
requireProgram(std::string_view name, std::string_view package, std::string_view searchPath);

} // namespace zento
