#pragma once

#include <string_view>

namespace zento {

/// Pixels per point by "Xft.dpi" of a resource database, in its text form: the value over 96 where
/// that is a whole number from 1 up, else 1.
double scaleFromResources(std::string_view resources);

} // namespace zento
