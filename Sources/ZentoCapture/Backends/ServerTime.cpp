#include "ZentoCapture/Backends/ServerTime.h"

namespace zento {

double secondsOfServerTime(std::uint32_t serverTime, double nowSeconds)
{
    const auto now = static_cast<std::int64_t>(nowSeconds * 1000);
    // The difference modulo 2^32, as a signed number: the nearest fit.
    const auto difference = static_cast<std::int32_t>(serverTime - static_cast<std::uint32_t>(now));
    return static_cast<double>(now + difference) / 1000;
}

} // namespace zento
