#pragma once

#include "ZentoImaging/GifFile.h"
#include "ZentoImaging/Palette.h"
#include "ZentoImaging/Picture.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

namespace zento {

/// Turns pictures into an animated GIF that plays for ever.
///
/// Only what changes is written, as a rectangle in which the unchanged pixels are left out. A pixel
/// counts as changed when it is farther from the picture it was last written from than an encoder's
/// noise: still areas therefore never shimmer, and an error cannot add up. A picture that changes
/// nothing lengthens the one before. Colours come from the palette of the first picture, or where
/// those are too far off from a palette of the frame's own.
///
/// Threading: one thread at a time.
/// Errors: those of `GifFile`.
class GifWriter {
public:
    /// Creates the file. `first` is of `Layout::Rgb`, its sides [1, 65535] pixels, and is shown for
    /// `delay` hundredths of a second, [1, 65535].
    GifWriter(const std::filesystem::path& path, const ConstPictureView& first, int delay);

    /// A picture of the same layout and size.
    void append(const ConstPictureView& picture, int delay);

    /// Completes and closes the file. To be called once.
    void finish();

private:
    struct Area { // [left, right) x [top, bottom)
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        bool isEmpty() const { return right <= left; }
    };
    enum class Draw { Everything, WhatChanged };

    Area changedArea() const;
    bool mayStay(std::size_t pixel) const;
    template <typename Visit>
    void forEachPixel(const Area& area, Visit visit) const;
    std::vector<PackedRgb> changedPixels(const Area& area) const;
    ColorTable& tableFor(std::span<const PackedRgb> pixels);
    GifFrame frameOf(const Area& area, ColorTable& table, Draw draw, int delay);

    int m_width;
    int m_height;
    std::vector<PackedRgb> m_picture; // the one being appended
    std::vector<PackedRgb> m_source;  // of each pixel, what it was last written from
    std::vector<PackedRgb> m_shown;   // and as what
    std::vector<ColorTable> m_tables; // the animation's, and of the last frame with one of its own
    GifFile m_file;
    GifFrame m_waiting; // may yet be shown for longer
};

} // namespace zento
