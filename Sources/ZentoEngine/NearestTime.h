#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <utility>

namespace zento::EditPlanner {

/// Finds which of many times lies nearest to a given one, in logarithmic time.
///
/// Gives what a plain search over |entry - time| from the first entry on would give, also where
/// rounding makes two distances equal: the lowest index wins.
class NearestTime {
public:
    struct Match {
        std::size_t index = 0;
        double distance = 0; // seconds
    };

    /// Entry i has the time `times[i]`, in any order.
    explicit NearestTime(std::span<const double> times);

    /// Nothing if there are no entries.
    std::optional<Match> find(double time) const;

    /// Whether an entry lies within the tolerance, inclusive.
    bool isWithin(double tolerance, double time) const;

    /// Gives the entry `index`, now at `from`, the time `to`.
    void move(std::size_t index, double from, double to);

private:
    std::set<std::pair<double, std::size_t>> m_entries;
};

} // namespace zento::EditPlanner
