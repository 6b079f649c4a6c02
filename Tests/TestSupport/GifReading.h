#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zento::test {

/// One picture of an animation, as a viewer shows it.
struct ShownGifFrame {
    int x = 0; // of the rectangle that was stored
    int y = 0;
    int width = 0;
    int height = 0;
    int delay = 0;                     // hundredths of a second
    int disposal = 0;                  // 1: what is drawn stays
    std::vector<std::uint32_t> pixels; // the whole animation's, 0xRRGGBB
};

struct ReadGif {
    int width = 0;
    int height = 0;
    bool playsForEver = false;
    std::vector<ShownGifFrame> frames;

    std::uint32_t pixel(const ShownGifFrame& frame, int x, int y) const;
    int duration() const; // hundredths of a second
};

/// Reads a GIF, decompressing with the library that only its container is written with. Throws
/// std::runtime_error for a file that is not whole.
ReadGif readGif(const std::filesystem::path& path);

} // namespace zento::test
