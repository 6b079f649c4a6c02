#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/Plane.h"
#include "ZentoImaging/Picture.h"

#include <array>
#include <cstdint>
#include <memory>

namespace zento {

/// How one axis of a plane is placed: the place s of the source is the place origin + scale * s of
/// the destination, both in samples with the first one's centre at 0.5. A negative scale mirrors.
struct AxisPlacement {
    double origin = 0;
    double scale = 1; // magnitude limited to [0.02, 16]

    bool operator==(const AxisPlacement&) const = default;
};

/// Which samples of a destination are wanted: [begin, end).
struct SampleRange {
    int begin = 0;
    int end = 0;

    int size() const { return end - begin; }
    bool operator==(const SampleRange&) const = default;
};

/// The samples whose area an interval touches, limited to [0, size).
SampleRange touchedSamples(double from, double to, int size);

/// Which kernel an axis is scaled with.
enum class ScaleFilter {
    Sharp, // Catmull-Rom from a scale of 0.8 up, Mitchell-Netravali stretched by 1/scale below
    Soft,  // Catmull-Rom from a scale of 0.8 up, a triangle stretched by 1/scale below: for chroma,
           // whose halving would need ten taps of Mitchell and is not seen to be sharper for it
};

/// Scales one plane with sub-pixel placement, a row at a time. Beyond its edges the source goes on
/// with its last sample. The result is the same bytes on every processor.
///
/// Placement is exact to 1/16384 of the weights; overshoot is limited to [0, 255].
///
/// Threading: one thread at a time: rows share a buffer.
class PlaneScaler {
public:
    PlaneScaler();
    ~PlaneScaler();
    PlaneScaler(PlaneScaler&&) noexcept;
    PlaneScaler& operator=(PlaneScaler&&) noexcept;

    /// Builds the weights for a source of that size and the wanted part of the destination. Cheap
    /// enough for every frame; nothing is built again for equal arguments.
    void prepare(
        int sourceWidth,
        int sourceHeight,
        AxisPlacement x,
        AxisPlacement y,
        SampleRange columns,
        SampleRange rows,
        ScaleFilter filter = ScaleFilter::Sharp);

    /// Writes `columns.size()` samples of the destination's row `y`, which lies in `rows`. The
    /// source has the size `prepare` was told.
    void scaleRow(Plane<const std::uint8_t> source, int y, std::uint8_t* out);
    void scaleRow(Plane<const std::uint16_t> source, int y, std::uint8_t* out); // 10-bit source

    SampleRange columns() const;
    SampleRange rows() const;

private:
    struct Plan;
    std::unique_ptr<Plan> m_plan;
};

/// All wanted rows at once: sample (columns.begin, rows.begin) and on of `destination` are written.
template <typename Sample>
void scalePlane(PlaneScaler& scaler, Plane<const Sample> source, Plane<std::uint8_t> destination)
{
    for (int y = scaler.rows().begin; y < scaler.rows().end; ++y) {
        scaler.scaleRow(source, y, destination.row(y) + scaler.columns().begin);
    }
}

/// How a picture is placed on a canvas: its pixel place p lies at origin + scale * p.
struct PicturePlacement {
    Vec2 origin;
    double scaleX = 1; // negative mirrors
    double scaleY = 1;

    bool operator==(const PicturePlacement&) const = default;
};

/// The placement of a plane, both pictures' chroma sites accounted for.
std::array<AxisPlacement, 2> planePlacement(
    const PicturePlacement& placement, const PlaneGrid& source, const PlaneGrid& destination);

/// The `PlaneScaler`s of a decoded picture and one layout of canvas. Planes of one geometry, such
/// as the two of chroma, share one.
///
/// Threading: one thread at a time.
class PictureScaler {
public:
    /// `window`: the pixels of the canvas that are wanted; in chroma planes every sample its area
    /// touches.
    void prepare(
        const YuvPlanes<const std::uint8_t>& source,
        const PicturePlacement& placement,
        const ConstPictureView& destination,
        const Rect& window);
    void prepare(
        const YuvPlanes<const std::uint16_t>& source,
        const PicturePlacement& placement,
        const ConstPictureView& destination,
        const Rect& window);
    /// Source and destination of the same layout, e.g. both `Layout::Rgb`.
    void prepare(
        const ConstPictureView& source,
        const PicturePlacement& placement,
        const ConstPictureView& destination,
        const Rect& window);

    /// Of plane 0, 1 or 2.
    PlaneScaler& plane(std::size_t index) { return index == 0 ? m_first : m_others; }

private:
    PlaneScaler m_first;
    PlaneScaler m_others;
};

/// Prepares and draws in one go, opaquely. A Y'CbCr source needs a Y'CbCr destination.
void drawScaled(
    PictureScaler& scaler,
    const YuvPlanes<const std::uint8_t>& source,
    const PicturePlacement& placement,
    const PictureView& destination,
    const Rect& window);
void drawScaled(
    PictureScaler& scaler,
    const YuvPlanes<const std::uint16_t>& source,
    const PicturePlacement& placement,
    const PictureView& destination,
    const Rect& window);
void drawScaled(
    PictureScaler& scaler,
    const ConstPictureView& source,
    const PicturePlacement& placement,
    const PictureView& destination,
    const Rect& window);

} // namespace zento
