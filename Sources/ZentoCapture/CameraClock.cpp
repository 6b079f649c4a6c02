#include "ZentoCapture/CameraClock.h"

#include <algorithm>
#include <cmath>

namespace zento {

double CameraClock::place(std::optional<double> stamp, double arrival)
{
    if (!m_start) {
        m_start = arrival;
    }
    const double byArrival = arrival - *m_start;
    if (!stamp) {
        return byArrival;
    }
    if (!m_stampAtStart || std::abs(*stamp - *m_stampAtStart - byArrival) > kStray) {
        m_stampAtStart = *stamp - byArrival;
    }
    const double time = *stamp - *m_stampAtStart;
    m_start = std::min(*m_start, arrival - time);
    return time;
}

} // namespace zento
