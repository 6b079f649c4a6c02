#include "ThreadTimes.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace zento {

std::map<std::string, double> threadTimes(pid_t process)
{
    std::map<std::string, double> times;
    std::error_code gone;
    const std::filesystem::path tasks = "/proc/" + std::to_string(process) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks, gone)) {
        std::string line;
        std::getline(std::ifstream(task.path() / "stat"), line);
        const auto begin = line.find('(');
        const auto end = line.rfind(')');
        if (begin == std::string::npos || end == std::string::npos) {
            continue;
        }
        std::istringstream fields(line.substr(end + 2));
        std::string skipped;
        for (int i = 0; i < 11; ++i) {
            fields >> skipped; // state to cmajflt: proc(5)
        }
        double user = 0;
        double system = 0;
        fields >> user >> system;
        times[line.substr(begin + 1, end - begin - 1)] +=
            (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
    }
    return times;
}

} // namespace zento
