#pragma once

#include <optional>
#include <string>

namespace zento {

/// The path of the picture the desktop shows behind its windows, where the desktop keeps it in its
/// settings (GNOME, Cinnamon, MATE). Nothing if there is none or it is no local file.
std::optional<std::string> desktopImage();

} // namespace zento
