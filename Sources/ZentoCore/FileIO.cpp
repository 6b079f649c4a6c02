#include "ZentoCore/FileIO.h"

#include "ZentoCore/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace zento {

namespace {

/// Repeats a call that a signal interrupted.
template <typename Call>
auto retried(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

} // namespace

std::string readFile(const std::filesystem::path& path)
{
    const FileDescriptor file(retried([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    struct stat status{};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) {
        throw systemError("cannot read", path.string(), errno);
    }
    constexpr std::size_t kMore = 4096; // the file may have grown, or be of unknown size
    std::string text;
    text.resize(static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)) + 1);
    std::size_t filled = 0;
    for (;;) {
        if (filled == text.size()) {
            text.resize(filled + kMore);
        }
        const auto count =
            retried([&] { return ::read(file.get(), text.data() + filled, text.size() - filled); });
        if (count < 0) {
            throw systemError("cannot read", path.string(), errno);
        }
        if (count == 0) {
            text.resize(filled);
            return text;
        }
        filled += static_cast<std::size_t>(count);
    }
}

void writeFile(const std::filesystem::path& path, std::string_view bytes)
{
    constexpr mode_t kMode = 0666; // less the user's mask
    FileDescriptor file(retried(
        [&] { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kMode); }));
    if (file.get() < 0) {
        throw systemError("cannot write", path.string(), errno);
    }
    while (!bytes.empty()) {
        const auto count = retried([&] { return ::write(file.get(), bytes.data(), bytes.size()); });
        if (count < 0) {
            throw systemError("cannot write", path.string(), errno);
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    if (::close(file.release()) != 0) {
        throw systemError("cannot write", path.string(), errno);
    }
}

void makeFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw systemError("Cannot make the folder", folder.string(), error.value());
    }
}

void replaceFile(const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::error_code error;
    std::filesystem::rename(from, to, error);
    if (error) {
        throw systemError("Cannot replace", to.string(), error.value());
    }
}

} // namespace zento
