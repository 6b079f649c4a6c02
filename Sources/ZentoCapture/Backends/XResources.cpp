#include "ZentoCapture/Backends/XResources.h"

#include <charconv>
#include <cmath>
#include <ranges>

namespace zento {

namespace {

constexpr std::string_view kFontResolution = "Xft.dpi:";
constexpr double kUnscaledResolution = 96;
constexpr double kWholeTolerance = 0.02; // desktops round the resolution to a whole number

double scaleOf(double resolution)
{
    const double scale = resolution / kUnscaledResolution;
    const double whole = std::round(scale);
    return whole >= 1 && std::abs(scale - whole) <= kWholeTolerance ? whole : 1;
}

} // namespace

double scaleFromResources(std::string_view resources)
{
    for (const auto part : std::views::split(resources, '\n')) {
        std::string_view line(part.begin(), part.end());
        if (!line.starts_with(kFontResolution)) {
            continue;
        }
        line.remove_prefix(kFontResolution.size());
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        double resolution = 0;
        std::from_chars(line.data(), line.data() + line.size(), resolution);
        return scaleOf(resolution);
    }
    return 1;
}

} // namespace zento
