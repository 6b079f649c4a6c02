#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace zento::bench {

/// What a process took.
struct Cost {
    double processor = 0; // seconds, of all its threads
    double wall = 0;      // seconds
    double peak = 0;      // megabytes that were resident at once
};

/// Runs a job in a process of its own and waits for it, so that nothing of one run weighs on the
/// next and the peak of memory is the run's own. `job` writes its results into what is given to it;
/// the caller's copy receives them.
///
/// Throws std::runtime_error where the job throws or dies. Threading: from a process of one thread.
Cost runInChild(
    const std::function<void(std::span<double> results)>& job, std::span<double> results);

/// Runs a program found in PATH; its output is dropped, its errors are seen.
Cost runProgram(const std::vector<std::string>& command);

} // namespace zento::bench
