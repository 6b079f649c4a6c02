#include "ZentoImaging/Scale.h"

#include <cassert>

namespace zento {

namespace {

template <typename Sample>
using Planes = std::array<Plane<const Sample>, 3>;

template <typename Sample>
Planes<Sample> planesOf(const YuvPlanes<const Sample>& source)
{
    return {source.y, source.cb, source.cr};
}

template <typename Sample>
std::array<PlaneGrid, 3> gridsOf(const YuvPlanes<const Sample>& source)
{
    const PlaneGrid chroma = chromaGrid(source);
    return {kFullGrid, chroma, chroma};
}

std::array<PlaneGrid, 3> gridsOf(const ConstPictureView& source)
{
    return {source.grid(0), source.grid(1), source.grid(2)};
}

template <typename Sample>
void preparePlanes(
    PictureScaler& scaler,
    const Planes<Sample>& source,
    const std::array<PlaneGrid, 3>& grids,
    const PicturePlacement& placement,
    const ConstPictureView& destination,
    const Rect& window)
{
    for (std::size_t i = 0; i < 2; ++i) { // plane 2 is as plane 1
        const PlaneGrid grid = destination.grid(i);
        const auto [x, y] = planePlacement(placement, grids[i], grid);
        const Rect wanted = grid.toPlane(window);
        const Plane<const std::uint8_t>& to = destination.planes[i];
        const bool isHalved = grid != kFullGrid;
        scaler.plane(i).prepare(
            source[i].width,
            source[i].height,
            x,
            y,
            touchedSamples(wanted.x, wanted.x + wanted.w, to.width),
            touchedSamples(wanted.y, wanted.y + wanted.h, to.height),
            isHalved ? ScaleFilter::Soft : ScaleFilter::Sharp);
    }
}

template <typename Sample>
void scalePlanes(
    PictureScaler& scaler, const Planes<Sample>& source, const PictureView& destination)
{
    for (std::size_t i = 0; i < 3; ++i) {
        scalePlane(scaler.plane(i), source[i], destination.planes[i]);
    }
}

} // namespace

std::array<AxisPlacement, 2> planePlacement(
    const PicturePlacement& placement, const PlaneGrid& source, const PlaneGrid& destination)
{
    // source sample -> source pixel -> canvas pixel -> destination sample, each of them affine.
    const auto axis = [](double origin,
                         double scale,
                         double sourcePerPixel,
                         double sourceOffset,
                         double perPixel,
                         double offset) {
        const double sampleScale = perPixel * scale / sourcePerPixel;
        return AxisPlacement{perPixel * origin + offset - sampleScale * sourceOffset, sampleScale};
    };
    return {
        axis(
            placement.origin.x,
            placement.scaleX,
            source.perPixel.x,
            source.offset.x,
            destination.perPixel.x,
            destination.offset.x),
        axis(
            placement.origin.y,
            placement.scaleY,
            source.perPixel.y,
            source.offset.y,
            destination.perPixel.y,
            destination.offset.y)};
}

void PictureScaler::prepare(
    const YuvPlanes<const std::uint8_t>& source,
    const PicturePlacement& placement,
    const ConstPictureView& destination,
    const Rect& window)
{
    assert(destination.layout == Layout::Yuv420);
    preparePlanes(*this, planesOf(source), gridsOf(source), placement, destination, window);
}

void PictureScaler::prepare(
    const YuvPlanes<const std::uint16_t>& source,
    const PicturePlacement& placement,
    const ConstPictureView& destination,
    const Rect& window)
{
    assert(destination.layout == Layout::Yuv420);
    preparePlanes(*this, planesOf(source), gridsOf(source), placement, destination, window);
}

void PictureScaler::prepare(
    const ConstPictureView& source,
    const PicturePlacement& placement,
    const ConstPictureView& destination,
    const Rect& window)
{
    assert(source.layout == destination.layout);
    preparePlanes(*this, source.planes, gridsOf(source), placement, destination, window);
}

void drawScaled(
    PictureScaler& scaler,
    const YuvPlanes<const std::uint8_t>& source,
    const PicturePlacement& placement,
    const PictureView& destination,
    const Rect& window)
{
    scaler.prepare(source, placement, destination, window);
    scalePlanes(scaler, planesOf(source), destination);
}

void drawScaled(
    PictureScaler& scaler,
    const YuvPlanes<const std::uint16_t>& source,
    const PicturePlacement& placement,
    const PictureView& destination,
    const Rect& window)
{
    scaler.prepare(source, placement, destination, window);
    scalePlanes(scaler, planesOf(source), destination);
}

void drawScaled(
    PictureScaler& scaler,
    const ConstPictureView& source,
    const PicturePlacement& placement,
    const PictureView& destination,
    const Rect& window)
{
    scaler.prepare(source, placement, destination, window);
    scalePlanes(scaler, source.planes, destination);
}

} // namespace zento
