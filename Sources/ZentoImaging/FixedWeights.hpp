#pragma once

#include "ZentoImaging/Kernels/ScaleRows.hpp"

#include <cmath>
#include <cstdint>
#include <vector>

namespace zento {

/// Weights of 14 bits that add up to one, in the ratios of `exact`. Rounding errors are carried
/// along, so that many small weights add up as the exact ones do.
inline std::vector<std::int16_t> fixedWeights(const std::vector<double>& exact)
{
    double sum = 0;
    for (const double value : exact) {
        sum += value;
    }
    std::vector<std::int16_t> weights;
    weights.reserve(exact.size());
    double running = 0;
    long given = 0;
    for (const double value : exact) {
        running += value / sum * kernel::kOne;
        const long next = std::lround(running);
        weights.push_back(static_cast<std::int16_t>(next - given));
        given = next;
    }
    return weights;
}

} // namespace zento
