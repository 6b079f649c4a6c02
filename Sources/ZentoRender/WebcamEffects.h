#pragma once

#include "ZentoImaging/Picture.h"
#include "ZentoImaging/Scale.h"
#include "ZentoRender/PersonMatte.h"

namespace zento::WebcamEffects {

// What is done to a webcam's picture (`Layout::Yuv420`) before it becomes a bubble, in place.
//
// Threading: free functions over the caller's picture.

/// Blurs all but the person, who stays sharp where the matte is bright. `placement`: where the
/// matte lies on the picture. `sigma` of the blur in pixels.
void blurBackground(
    const PictureView& picture,
    const Matte& matte,
    const PicturePlacement& placement,
    double sigma);

/// Lifts the colours of a typical laptop's camera, on gamma-coded values: saturation 1.1 around the
/// BT.709 luma, contrast 1.06 around the middle, brightness 0.02 added; then vibrance 0.18, which
/// takes every colour 1 + 0.18 (1 - s) times as far from its luma, with s, its saturation, the
/// largest of R', G', B' less the smallest: the usual linear form of that control, in which a pale
/// colour gains the most and a pure one nothing.
///
/// Luma is affine in this and s depends on Cb and Cr alone, so it is worked out plane by plane.
void enhance(const PictureView& picture);

} // namespace zento::WebcamEffects
