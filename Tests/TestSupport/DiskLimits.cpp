#include "TestSupport/DiskLimits.h"

#include "TestSupport/TemporaryFolder.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <string>
#include <system_error>

namespace zento::test {

namespace {

constexpr int kNoDisk = 77;

/// A mount that no other process sees: as root, or as root of a user namespace.
bool mountPrivately(const std::filesystem::path& folder, std::uint64_t byteCount)
{
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return false;
    const std::string options = "size=" + std::to_string(byteCount);
    return mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

[[noreturn]] void runChild(
    int output,
    const std::filesystem::path& folder,
    std::uint64_t byteCount,
    const std::function<std::string(const std::filesystem::path&)>& work)
{
    if (!mountPrivately(folder, byteCount))
        _exit(kNoDisk);
    std::string said;
    try {
        said = work(folder);
    } catch (const std::exception& error) {
        said = error.what();
    }
    const auto written = write(output, said.data(), said.size());
    _exit(written == static_cast<ssize_t>(said.size()) ? 0 : 1);
}

std::string readAll(int input)
{
    std::string text;
    std::array<char, 4096> part{};
    for (ssize_t count = 0; (count = read(input, part.data(), part.size())) > 0;)
        text.append(part.data(), static_cast<std::size_t>(count));
    return text;
}

} // namespace

FileSizeLimit::FileSizeLimit(std::uint64_t byteCount)
{
    std::signal(SIGXFSZ, SIG_IGN); // else the first refused write ends the process
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    m_before = limit.rlim_cur;
    limit.rlim_cur = byteCount;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        throw std::system_error(errno, std::generic_category(), "RLIMIT_FSIZE");
}

FileSizeLimit::~FileSizeLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = m_before;
    setrlimit(RLIMIT_FSIZE, &limit);
}

std::optional<std::string> onSmallDisk(
    std::uint64_t byteCount, const std::function<std::string(const std::filesystem::path&)>& work)
{
    const TemporaryFolder folder;
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        runChild(ends[1], folder.path(), byteCount, work);
    }
    close(ends[1]);
    std::string said = readAll(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == kNoDisk)
        return {};
    if (status != 0)
        return "the child ended with status " + std::to_string(status);
    return said;
}

} // namespace zento::test
