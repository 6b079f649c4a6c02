#include "Zento/Demo/ProcessGroup.h"

#include "ZentoCore/Error.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace zento {

namespace {

constexpr int kReportDescriptor = 3;

/// All that a child needs between fork and exec, where nothing may allocate.
struct Launch {
    std::vector<char*> arguments;
    std::vector<char*> environment;
    int input = -1;
    int output = -1;
    int reportTo = -1;
    int failure = -1; // closed by a successful exec; else gets errno
    pid_t group = 0;
    pid_t parent = 0;
};

/// A descriptor that is closed with its scope.
class Descriptor {
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_descriptor; }
    void close()
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
        m_descriptor = -1;
    }

private:
    int m_descriptor;
};

std::vector<char*> pointers(std::vector<std::string>& strings)
{
    std::vector<char*> result;
    result.reserve(strings.size() + 1);
    for (std::string& string : strings) {
        result.push_back(string.data());
    }
    result.push_back(nullptr);
    return result;
}

void resetSignals()
{
    sigset_t none;
    sigemptyset(&none);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGCHLD}) {
        ::signal(signal, SIG_DFL);
    }
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] void becomeProgram(const Launch& launch)
{
    setpgid(0, launch.group);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != launch.parent) {
        _exit(1); // the parent ended before the line above
    }
    resetSignals();
    dup2(launch.input, STDIN_FILENO);
    dup2(launch.output, STDOUT_FILENO);
    dup2(launch.output, STDERR_FILENO);
    if (launch.reportTo >= 0 && launch.reportTo != kReportDescriptor) {
        dup2(launch.reportTo, kReportDescriptor);
    }
    const unsigned firstPrivate = launch.reportTo >= 0 ? kReportDescriptor + 1 : kReportDescriptor;
    close_range(firstPrivate, ~0U, CLOSE_RANGE_CLOEXEC);
    execve(launch.arguments.front(), launch.arguments.data(), launch.environment.data());
    const int error = errno;
    [[maybe_unused]] const auto written = write(launch.failure, &error, sizeof error);
    _exit(127);
}

} // namespace

ProcessGroup::ProcessGroup()
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

ProcessGroup::~ProcessGroup()
{
    stop();
}

pid_t ProcessGroup::start(
    const std::vector<std::string>& command,
    const Environment& environment,
    const std::filesystem::path& log,
    int reportTo)
{
    const auto fail = [&](int error) -> Error {
        return systemError("start", command.front(), error);
    };
    std::vector<std::string> arguments = command;
    std::vector<std::string> variables;
    for (const auto& [name, value] : environment) {
        variables.push_back(name);
        variables.back().append("=").append(value);
    }
    const Descriptor input(open("/dev/null", O_RDONLY | O_CLOEXEC));
    const Descriptor output(
        open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR));
    std::array<int, 2> failure{};
    if (input.get() < 0 || output.get() < 0 || pipe2(failure.data(), O_CLOEXEC) != 0) {
        throw fail(errno);
    }
    const Descriptor failureIn(failure[0]);
    Descriptor failureOut(failure[1]);
    // Descriptor 3 is about to become the reports': what a child still needs must not stand there.
    Descriptor failureCopy(fcntl(failureOut.get(), F_DUPFD_CLOEXEC, kReportDescriptor + 1));
    failureOut.close();
    const Launch launch{
        .arguments = pointers(arguments),
        .environment = pointers(variables),
        .input = input.get(),
        .output = output.get(),
        .reportTo = reportTo,
        .failure = failureCopy.get(),
        .group = m_group,
        .parent = getpid()};
    const pid_t program = fork();
    if (program < 0) {
        throw fail(errno);
    }
    if (program == 0) {
        becomeProgram(launch);
    }
    setpgid(program, m_group); // both do it, so that it holds for both from here on
    if (m_group == 0) {
        m_group = program;
    }
    failureCopy.close();
    int error = 0;
    if (read(failureIn.get(), &error, sizeof error) == static_cast<ssize_t>(sizeof error)) {
        throw fail(error);
    }
    return program;
}

bool ProcessGroup::isRunning(pid_t program)
{
    // WNOWAIT leaves the ended program unreaped, so its number, perhaps the group's, stays taken.
    siginfo_t info{};
    const int result =
        waitid(P_PID, static_cast<id_t>(program), &info, WEXITED | WNOHANG | WNOWAIT);
    return result == 0 && info.si_pid == 0;
}

void ProcessGroup::stop() noexcept
{
    using namespace std::chrono_literals;
    if (m_group == 0) {
        return;
    }
    // The leader, Xvfb say, is reaped with all others here; the group's number cannot be given
    // away while a member is left, and with none left waitpid has failed.
    kill(-m_group, SIGTERM);
    bool killed = false;
    const auto deadline = std::chrono::steady_clock::now() + 2s;
    while (true) {
        const pid_t ended = waitpid(-m_group, nullptr, WNOHANG);
        if (ended > 0 || (ended < 0 && errno == EINTR)) {
            continue;
        }
        if (ended < 0) {
            break;
        }
        if (!killed && std::chrono::steady_clock::now() > deadline) {
            kill(-m_group, SIGKILL);
            killed = true;
        }
        std::this_thread::sleep_for(5ms);
    }
    m_group = 0;
}

} // namespace zento
