#pragma once

#include <cstdint>

namespace zento {

class XConnection;

/// 0xRRGGBB
struct VerticalGradient {
    std::uint32_t top = 0x2f4a6d;
    std::uint32_t bottom = 0x8fa9c4;
};

/// Makes the gradient the root window's background, and announces it under _XROOTPMAP_ID, where
/// programs look for a wallpaper. It stays when the connection goes. Needs a 24-bit screen.
void paintRootBackground(const XConnection& connection, const VerticalGradient& gradient);

} // namespace zento
