#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace zento {

using Environment = std::map<std::string, std::string>;

/// Programs that live and die together: one process group of our own children and of whatever
/// they start.
///
/// None outlives the object: the destructor ends the group, waits for every member and kills those
/// that linger. Nor does any outlive this process: a child gets SIGTERM as soon as the thread that
/// started it ends. A daemon's orphans are adopted (PR_SET_CHILD_SUBREAPER, set for the whole
/// process by the constructor), so they can be waited for too. A terminal's Ctrl-C reaches this
/// process only, as the group is not the terminal's foreground group.
///
/// Threading: one thread makes the object, starts the programs and destroys it.
class ProcessGroup {
public:
    ProcessGroup();
    ~ProcessGroup();
    ProcessGroup(const ProcessGroup&) = delete;
    ProcessGroup& operator=(const ProcessGroup&) = delete;

    /// Runs `command` (an executable's path, then its arguments) with exactly this environment.
    /// Its input is empty; what it prints is added to `log`. If `reportTo` is a descriptor, the
    /// program has it as its descriptor 3. No other descriptor and no blocked signal is inherited.
    /// Throws `Error` of the domain "errno" when the program cannot be executed.
    pid_t start(
        const std::vector<std::string>& command,
        const Environment& environment,
        const std::filesystem::path& log,
        int reportTo = -1);

    /// False once the program has ended.
    static bool isRunning(pid_t program);

    /// Ends all: SIGTERM, up to two seconds to obey, SIGKILL. Nothing is left to run afterwards.
    void stop() noexcept;

private:
    pid_t m_group = 0; // 0: nothing started
};

} // namespace zento
