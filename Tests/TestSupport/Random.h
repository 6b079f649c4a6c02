#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace zento::test {

/// Random numbers that are the same with every standard library, unlike its distributions.
class Random {
public:
    explicit Random(std::uint64_t seed)
        : m_engine(seed)
    {
    }

    double uniform(double low, double high)
    {
        return low + (high - low) * (static_cast<double>(m_engine() >> 11U) * 0x1p-53);
    }

    /// In [0, count).
    std::size_t below(std::size_t count) { return m_engine() % count; }

    bool chance(double probability) { return uniform(0, 1) < probability; }

    template <typename List>
    auto pick(const List& list)
    {
        return *(std::begin(list) + static_cast<std::ptrdiff_t>(below(std::size(list))));
    }

private:
    std::mt19937_64 m_engine;
};

} // namespace zento::test
