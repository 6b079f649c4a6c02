#pragma once

#include "ZentoImaging/Lzw.h"
#include "ZentoImaging/Palette.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

namespace zento {

/// One rectangle of an animation, drawn over what is there.
struct GifFrame {
    int x = 0; // pixels of the animation
    int y = 0;
    int width = 0;
    int height = 0;
    LzwImage image;                 // made with the palette, row by row
    std::vector<PackedRgb> palette; // up to 255 colours; empty: the animation's
    int delay = 0;                  // hundredths of a second it is shown, [0, 65535]
};

/// A GIF file that plays for ever, written frame by frame.
///
/// Threading: one thread at a time.
/// Errors: code `kGifNotStarted` from the constructor, `kGifFrame` and `kGifNotFinished` later.
class GifFile {
public:
    /// Creates the file, replacing one that exists. Sides are [1, 65535]; up to 255 colours.
    GifFile(
        const std::filesystem::path& path,
        int width,
        int height,
        std::span<const PackedRgb> palette);
    ~GifFile(); // leaves the file as it is
    GifFile(GifFile&&) noexcept;
    GifFile& operator=(GifFile&&) noexcept;

    void add(const GifFrame& frame);

    /// Completes and closes the file. To be called once.
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
