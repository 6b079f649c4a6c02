#pragma once

#include "Zento/Model/AppSettings.h"

#include <array>
#include <string_view>
#include <utility>

namespace zento {

/// An enumeration of the settings with the names its values have in the file.
template <typename Enum>
using NameTable = std::array<std::pair<Enum, std::string_view>, 3>;

inline constexpr NameTable<AppSettings::CameraIntensity> kIntensities{{
    {AppSettings::CameraIntensity::Subtle, "subtle"},
    {AppSettings::CameraIntensity::Balanced, "balanced"},
    {AppSettings::CameraIntensity::Dramatic, "dramatic"},
}};
inline constexpr NameTable<AppSettings::Aspect> kAspects{{
    {AppSettings::Aspect::Wide, "16:9"},
    {AppSettings::Aspect::Vertical, "9:16"},
    {AppSettings::Aspect::Square, "1:1"},
}};
inline constexpr NameTable<AppSettings::Resolution> kResolutions{{
    {AppSettings::Resolution::P1080, "1080p"},
    {AppSettings::Resolution::P1440, "1440p"},
    {AppSettings::Resolution::P2160, "4K"},
}};

constexpr const auto& names(AppSettings::CameraIntensity /*unused*/)
{
    return kIntensities;
}

constexpr const auto& names(AppSettings::Aspect /*unused*/)
{
    return kAspects;
}

constexpr const auto& names(AppSettings::Resolution /*unused*/)
{
    return kResolutions;
}

template <typename Enum>
concept NamedEnum = requires(Enum value) { names(value); };

} // namespace zento
