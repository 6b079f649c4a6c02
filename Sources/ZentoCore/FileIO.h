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

/// Makes a folder and those above it, if they are missing. Throws `Error` with the system's reason.
void makeFolder(const std::filesystem::path& folder);

/// Gives a complete, closed file the name `to`, in place of one that has it. Throws `Error`.
void replaceFile(const std::filesystem::path& from, const std::filesystem::path& to);

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
