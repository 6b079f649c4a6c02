#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <vector>

namespace zento::bench {

/// Processor time in seconds, since some fixed moment.
inline double processorSeconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Of the calling thread.
inline double threadSeconds()
{
    return processorSeconds(CLOCK_THREAD_CPUTIME_ID);
}

/// Of the whole process, all threads together.
inline double processSeconds()
{
    return processorSeconds(CLOCK_PROCESS_CPUTIME_ID);
}

/// The median of what `runs` calls cost this thread. A call is told its number, 1 to `runs`; a
/// call before them, 0, warms up.
template <typename Job>
double medianMilliseconds(int runs, Job job)
{
    std::vector<double> times;
    job(0);
    for (int i = 1; i <= runs; ++i) {
        const double before = threadSeconds();
        job(i);
        times.push_back((threadSeconds() - before) * 1e3);
    }
    const auto middle = times.begin() + runs / 2;
    std::ranges::nth_element(times, middle);
    return *middle;
}

} // namespace zento::bench
