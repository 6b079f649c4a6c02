#pragma once

#include "ZentoImaging/GifFile.h"
#include "ZentoImaging/Palette.h"
#include "ZentoImaging/Picture.h"

#include <filesystem>
#include <optional>
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
    /// Creates the file. Sides are [1, 65535] pixels.
    GifWriter(std::filesystem::path path, int width, int height);

    /// A picture of `Layout::Rgb` and the size given, shown for `delay` hundredths of a second,
    /// [1, 65535].
    void append(const ConstPictureView& picture, int delay);

    /// Completes and closes the file; at least one picture has been appended.
    void finish();

private:
    struct Area { // [left, right) x [top, bottom)
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        bool isEmpty() const { return right <= left; }
    };

    void read(const ConstPictureView& picture);
    Area changedArea() const;
    bool mayStay(std::size_t pixel) const;
    template <typename Visit>
    void forEachPixel(const Area& area, Visit visit) const;
    void show(const Area& area, int delay);
    std::vector<PackedRgb> changedPixels(const Area& area) const;
    double errorOf(std::span<const PackedRgb> pixels, ColorTable& table);
    GifFrame frameOf(const Area& area, ColorTable& table);
    void flush();

    std::filesystem::path m_path;
    int m_width;
    int m_height;
    std::optional<GifFile> m_file; // from the first picture on, whose palette it has
    std::optional<ColorTable> m_table;
    std::optional<ColorTable> m_ownTable; // of the last frame that needed one
    std::optional<GifFrame> m_waiting;    // may yet be shown for longer
    std::vector<PackedRgb> m_picture;     // the one being appended
    std::vector<PackedRgb> m_source;      // of each pixel, what it was last written from
    std::vector<PackedRgb> m_shown;       // and as what
};

} // namespace zento
