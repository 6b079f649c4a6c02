#pragma once

#include "ZentoCore/Error.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace zento {

/// The whole of a file. Throws `Error` with the path and the system's reason; a folder is no file.
std::string readFile(const std::filesystem::path& path);

/// Writes a file whole, without atomic replacement. Throws `Error` at any failure, also when the
/// disk fills up.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

/// `parse(text)` of a file's text, with the path put before the sentence of an `Error`.
template <typename Parse>
auto parseFile(const std::filesystem::path& path, Parse parse)
{
    const std::string text = readFile(path);
    try {
        return parse(text);
    } catch (const Error& error) {
        throw Error(error.domain(), error.code(), path.string() + ": " + error.what());
    }
}

} // namespace zento
