#pragma once

#include <random>

namespace zento {

/// Numbers that look random and are the same on every machine: the standard library's engines are
/// laid down to the bit, its distributions are not.
class Random {
public:
    explicit Random(std::uint64_t seed)
        : m_engine(seed)
    {
    }

    /// Evenly spread over [from, to).
    double between(double from, double to)
    {
        constexpr double kScale = 0x1.0p-53;
        return from + (to - from) * static_cast<double>(m_engine() >> 11U) * kScale;
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace zento
