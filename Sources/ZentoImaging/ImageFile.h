#pragma once

#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Picture.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace zento {

/// Reads an image file of any installed format, turned upright as the file says, and made smaller
/// if its longer side has more than `maxPixels` pixels. Colour profiles are not looked at.
///
/// Errors: a file that is missing or is not an image.
Canvas loadImage(const std::filesystem::path& path, std::optional<int> maxPixels = {});

/// The same of a file's bytes.
Canvas decodeImage(std::span<const char> bytes);

/// A PNG file of the canvas. `density` is pixels a point, [1, ∞): 2 for a high-density display; it
/// is written as the physical size of a pixel, one point being 1/72 inch.
std::vector<std::byte> encodePng(const Canvas& canvas, double density = 1);

/// Writes a PNG file.
void savePng(const Canvas& canvas, const std::filesystem::path& path, double density = 1);
void savePng(const ConstPictureView& picture, const std::filesystem::path& path);

} // namespace zento
