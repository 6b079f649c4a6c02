#include "ZentoCore/PortableMath.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace zento::portable {

namespace {

// ln 2 and pi / 2 in two and three parts: a multiple of the first parts is exact.
constexpr double kLn2High = 0x1.62e42fee00000p-1;
constexpr double kLn2Low = 0x1.a39ef35793c76p-33;
constexpr double kHalfPiHigh = 0x1.921fb54400000p+0;
constexpr double kHalfPiMiddle = 0x1.0b4611a600000p-34;
constexpr double kHalfPiLow = 0x1.3198a2e037073p-69;
constexpr double kLog2E = 0x1.71547652b82fep+0;
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;

/// 1 + x (a + x (b + ...)), with the reciprocals of growing factorials.
template <std::size_t Count>
double series(const std::array<double, Count>& divisors, double x)
{
    double sum = 1;
    for (std::size_t i = Count; i-- > 0;)
        sum = 1 + sum * x / divisors[i];
    return sum;
}

double sinNearZero(double x) // |x| <= pi / 4
{
    constexpr std::array<double, 8> kDivisors = {
        -2.0 * 3, -4.0 * 5, -6.0 * 7, -8.0 * 9, -10.0 * 11, -12.0 * 13, -14.0 * 15, -16.0 * 17};
    return x * series(kDivisors, x * x);
}

double cosNearZero(double x)
{
    constexpr std::array<double, 8> kDivisors = {
        -1.0 * 2, -3.0 * 4, -5.0 * 6, -7.0 * 8, -9.0 * 10, -11.0 * 12, -13.0 * 14, -15.0 * 16};
    return series(kDivisors, x * x);
}

} // namespace

double exp(double x)
{
    constexpr std::array<double, 13> kDivisors = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
    const double n = std::round(x * kLog2E);
    const double rest = x - n * kLn2High - n * kLn2Low;
    return std::ldexp(series(kDivisors, rest), static_cast<int>(n));
}

double sin(double x)
{
    const double n = std::round(x * kTwoOverPi);
    const double rest = x - n * kHalfPiHigh - n * kHalfPiMiddle - n * kHalfPiLow;
    switch (static_cast<long long>(n) & 3) {
    case 0:
        return sinNearZero(rest);
    case 1:
        return cosNearZero(rest);
    case 2:
        return -sinNearZero(rest);
    default:
        return -cosNearZero(rest);
    }
}

double tanh(double x)
{
    constexpr double kSaturated = 20; // from here on it is one to the last bit
    if (std::abs(x) > kSaturated)
        return std::copysign(1.0, x);
    const double e = exp(2 * x);
    return (e - 1) / (e + 1);
}

double exp2(double x)
{
    const double whole = std::floor(x);
    return std::ldexp(exp((x - whole) * (kLn2High + kLn2Low)), static_cast<int>(whole));
}

} // namespace zento::portable
