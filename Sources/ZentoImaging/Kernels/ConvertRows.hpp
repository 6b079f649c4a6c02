#pragma once

#include <cstddef>
#include <cstdint>

namespace zento::kernel {

/// One row of B, G, R, x pixels to 10-bit 4:2:2. `width` luma and (width + 1) / 2 chroma samples
/// are written.
void convertRowTo422(
    const std::uint8_t* pixels,
    std::size_t width,
    std::uint16_t* y,
    std::uint16_t* cb,
    std::uint16_t* cr);

enum class Alpha { Kept, Opaque }; // opaque: what the pixel holds counts as lying over black

/// One row of premultiplied B, G, R, A pixels to premultiplied 8-bit Y', Cb, Cr and alpha of full
/// size. `alphaOut` may be null.
void convertRowToYuv(
    const std::uint8_t* pixels,
    std::size_t width,
    Alpha alpha,
    std::uint8_t* y,
    std::uint8_t* cb,
    std::uint8_t* cr,
    std::uint8_t* alphaOut);

} // namespace zento::kernel
