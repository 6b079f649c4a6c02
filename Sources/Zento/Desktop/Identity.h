#pragma once

namespace zento {

/// What the desktop knows the application by: its bus name, the name of its .desktop file and icon.
inline constexpr auto kApplicationId = "dev.halvek.zento";

/// The bus object of a D-Bus activatable application: its id as a path.
inline constexpr auto kApplicationPath = "/dev/halvek/zento";

} // namespace zento
