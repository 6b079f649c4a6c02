#pragma once

#include <sys/types.h>

#include <map>
#include <string>

namespace zento {

/// The processor time of a process's threads so far, in seconds by the threads' names; of those
/// that still run. Threads of one name are added up.
std::map<std::string, double> threadTimes(pid_t process);

} // namespace zento
