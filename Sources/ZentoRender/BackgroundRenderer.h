#pragma once

#include "ZentoCore/StyleSpec.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/Color.h"

#include <string_view>

/// Turns the recipe of a background into pixels of any size. Fully determined by its arguments, but
/// for the file of an image background.
///
/// Threading: free functions.
namespace zento::BackgroundRenderer {

/// A canvas of that size in pixels, [1, ∞), filled. An image that cannot be read is dark grey.
Canvas render(const StyleSpec::Background& background, int width, int height);

/// The same into a canvas that exists, filling it.
void draw(const StyleSpec::Background& background, Canvas& canvas);

/// Whether a background is so light on average that dark text is read better on it. Transparent
/// pixels count as black.
bool isLight(const Canvas& background);

/// Reads "#RRGGBB" as it stands: the first character is dropped whatever it is, the rest read as a
/// hexadecimal number, 0 if it is none. Short forms are not expanded.
Color color(std::string_view hex, double alpha = 1);

} // namespace zento::BackgroundRenderer
