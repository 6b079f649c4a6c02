#pragma once

#include "ZentoEngine/EditPlanner.h"

#include <cstdint>
#include <vector>

namespace zento::test {

enum class LogOrder : unsigned char {
    Ascending, // as a recording writes it
    Disturbed, // with jumps, swaps and equal times, as a file may hold it
};

/// A recording with analyses and user edits, all random, and everything a plan is made of.
///
/// It holds what rules are sensitive to: bursts, long pauses, times on a grid that meets thresholds
/// exactly, equal times, overlapping speech, edits near and far from moments, labels beyond ASCII.
struct RandomSession {
    explicit RandomSession(std::uint64_t seed, LogOrder order = LogOrder::Ascending);
    RandomSession(const RandomSession&) = delete;
    RandomSession& operator=(const RandomSession&) = delete;

    std::vector<InputEvent> events;
    EditPlanner::PlanInput input; // `input.events` is a view of `events`
};

} // namespace zento::test
