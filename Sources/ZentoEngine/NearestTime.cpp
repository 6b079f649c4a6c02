#include "ZentoEngine/NearestTime.h"

#include <cmath>
#include <iterator>
#include <limits>

namespace zento::EditPlanner {

NearestTime::NearestTime(std::span<const double> times)
{
    for (std::size_t i = 0; i < times.size(); ++i) {
        m_entries.emplace(times[i], i);
    }
}

std::optional<NearestTime::Match> NearestTime::find(double time) const
{
    std::optional<Match> best;
    // Whether the entry is as near as any so far, so that the one behind it may tie with it.
    const auto consider = [&](const std::pair<double, std::size_t>& entry) {
        const double distance = std::abs(entry.first - time);
        if (!best || distance < best->distance
            || (distance == best->distance && entry.second < best->index)) {
            best = Match{entry.second, distance};
        }
        return distance == best->distance;
    };
    constexpr std::size_t kLastIndex = std::numeric_limits<std::size_t>::max();
    const auto middle = m_entries.lower_bound({time, 0});
    for (auto it = middle; it != m_entries.end() && consider(*it);) {
        it = m_entries.upper_bound({it->first, kLastIndex});
    }
    for (auto it = middle; it != m_entries.begin();) {
        it = m_entries.lower_bound({std::prev(it)->first, 0}); // the lowest index of that time
        if (!consider(*it)) {
            break;
        }
    }
    return best;
}

bool NearestTime::isWithin(double tolerance, double time) const
{
    const auto match = find(time);
    return match && match->distance <= tolerance;
}

void NearestTime::move(std::size_t index, double from, double to)
{
    m_entries.erase({from, index});
    m_entries.emplace(to, index);
}

} // namespace zento::EditPlanner
