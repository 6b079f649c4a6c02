#pragma once

#include "ZentoCore/Plane.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Picture.h"

#include <cstdint>

namespace zento {

// All conversions are BT.709 on gamma-coded values, limited range: Y' 16-235 and Cb, Cr 16-240 of
// 8 bit, four times that of 10 bit, rounded to the nearest.
//
// Threading: free functions over the caller's memory.

/// A captured picture as 10-bit 4:2:2. A chroma sample is the average (1 2 1)/4 around its even
/// pixel, which is where left-sited chroma lies; beyond an edge the last pixel counts on. The
/// planes have the picture's size, chroma half its width rounded up; their rows may be of any
/// alignment.
void convert(const BgraView& source, const YuvPlanes<std::uint16_t>& destination);

/// A canvas as an opaque picture, what is transparent over black. Chroma as above, and (1 3 3 1)/8
/// vertically.
Picture toPicture(const Canvas& canvas, Layout layout);
Picture toPicture(const BgraView& source, Layout layout);

/// An opaque picture as a canvas, chroma interpolated as in scaling.
Canvas toCanvas(const ConstPictureView& picture);
Canvas toCanvas(const YuvPlanes<const std::uint8_t>& planes);
Canvas toCanvas(const YuvPlanes<const std::uint16_t>& planes);

/// A film picture as R', G', B' of full size.
Picture toRgb(const ConstPictureView& picture);

/// The same of a decoded picture, brought to a size: each plane is scaled straight to it.
Picture toRgb(const YuvPlanes<const std::uint8_t>& planes, int width, int height);
Picture toRgb(const YuvPlanes<const std::uint16_t>& planes, int width, int height);

} // namespace zento
