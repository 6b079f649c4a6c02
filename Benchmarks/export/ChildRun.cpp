#include "ChildRun.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace zento::bench {

namespace {

using Clock = std::chrono::steady_clock;

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

Cost waitFor(pid_t child, Clock::time_point start, const std::string& name)
{
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(name + " failed");
    return {
        .processor = seconds(usage.ru_utime) + seconds(usage.ru_stime),
        .wall = std::chrono::duration<double>(Clock::now() - start).count(),
        .peak = static_cast<double>(usage.ru_maxrss) / 1024};
}

[[noreturn]] void
runAndExit(const std::function<void(std::span<double>)>& job, std::span<double> results, int pipe)
{
    int code = 1;
    try {
        job(results);
        const auto bytes = std::as_bytes(results);
        const ssize_t written = write(pipe, bytes.data(), bytes.size());
        code = written == static_cast<ssize_t>(bytes.size()) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(code);
}

} // namespace

Cost runInChild(const std::function<void(std::span<double>)>& job, std::span<double> results)
{
    std::fflush(nullptr);
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe for a run");
    const auto start = Clock::now();
    const pid_t child = fork();
    if (child == 0)
        runAndExit(job, results, ends[1]);
    close(ends[1]);
    const auto bytes = std::as_writable_bytes(results);
    std::size_t received = 0;
    while (received < bytes.size()) {
        const ssize_t count = read(ends[0], bytes.data() + received, bytes.size() - received);
        if (count <= 0)
            break;
        received += static_cast<std::size_t>(count);
    }
    close(ends[0]);
    return waitFor(child, start, "a run");
}

Cost runProgram(const std::vector<std::string>& command)
{
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (const std::string& word : command)
        words.push_back(const_cast<char*>(word.c_str())); // the interface's; nobody writes
    words.push_back(nullptr);
    const auto start = Clock::now();
    pid_t child = 0;
    if (posix_spawnp(&child, words[0], nullptr, nullptr, words.data(), environ) != 0)
        throw std::runtime_error(command.front() + " cannot be started");
    return waitFor(child, start, command.front());
}

} // namespace zento::bench
