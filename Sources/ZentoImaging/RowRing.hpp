#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zento {

/// The last rows of a picture that is worked on from top to bottom, few enough to stay in the
/// cache. Row `index` (any integer) takes the place of row index - capacity.
class RowRing {
public:
    RowRing(int capacity, std::size_t width)
        : m_capacity(capacity)
        , m_width(width)
        , m_samples(std::size_t(capacity) * width)
    {
    }

    std::int16_t* row(int index)
    {
        const int place = index % m_capacity;
        return &m_samples[std::size_t(place < 0 ? place + m_capacity : place) * m_width];
    }

private:
    int m_capacity;
    std::size_t m_width;
    std::vector<std::int16_t> m_samples;
};

} // namespace zento
