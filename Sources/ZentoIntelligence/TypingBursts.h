#pragma once

#include <limits>

namespace zento {

/// Tells where typing begins: at a key more than 0.55 s after the one before, the gap that ends a
/// moment of typing in the planner.
class TypingBursts {
public:
    /// `t`: seconds, not earlier than at the call before.
    bool begins(double t)
    {
        constexpr double kGap = 0.55;
        const bool isNew = t - m_lastKey > kGap;
        m_lastKey = t;
        return isNew;
    }

private:
    double m_lastKey = -std::numeric_limits<double>::infinity();
};

} // namespace zento
