#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace zento::test {

/// While it lives, files of this process end at `byteCount`: what lies beyond is refused with
/// EFBIG.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::uint64_t byteCount);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    std::uint64_t m_before = 0;
};

/// Runs `work` in a child process on a filesystem of `byteCount` bytes of its own and gives what it
/// returned. Nothing where this system lets no process have one. An exception that leaves `work`
/// gives its text.
std::optional<std::string> onSmallDisk(
    std::uint64_t byteCount, const std::function<std::string(const std::filesystem::path&)>& work);

} // namespace zento::test
