#include "SyntheticSource.h"

#include <cmath>
#include <memory>
#include <vector>

namespace zento {
namespace {

template <typename Sample>
struct OwnedPlanes {
    std::array<std::vector<Sample>, 3> samples;
    YuvPlanes<const Sample> view;
};

/// The samples of component `c`, the first one at `first` and then at every `step`.
template <typename Sample>
Plane<const Sample> fillPlane(
    std::vector<Sample>& samples,
    const Painting& painting,
    std::size_t c,
    VideoSize size,
    Vec2 first,
    Vec2 step,
    double unit)
{
    samples.resize(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
    auto sample = samples.begin();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            *sample++ = static_cast<Sample>(std::lround(
                unit * limitedRange(painting({first.x + x * step.x, first.y + y * step.y}))[c]));
    return {samples.data(), size.width, size.height, size.width};
}

template <typename Sample>
VideoFrame sampledAs(
    const Painting& painting,
    VideoSize size,
    int verticalChroma,
    double unit,
    std::uint64_t identity)
{
    auto planes = std::make_shared<OwnedPlanes<Sample>>();
    const VideoSize chroma = {
        (size.width + 1) / 2, (size.height + verticalChroma - 1) / verticalChroma};
    const Vec2 first = {0.5, verticalChroma * 0.5}; // on the even columns
    const Vec2 step = {2, static_cast<double>(verticalChroma)};
    planes->view = {
        fillPlane(planes->samples[0], painting, 0, size, {0.5, 0.5}, {1, 1}, unit),
        fillPlane(planes->samples[1], painting, 1, chroma, first, step, unit),
        fillPlane(planes->samples[2], painting, 2, chroma, first, step, unit)};
    return {planes->view, planes, 0, identity};
}

} // namespace

std::array<double, 3> limitedRange(const RgbValue& color)
{
    const double y = 0.2126 * color[0] + 0.7152 * color[1] + 0.0722 * color[2];
    return {16 + 219 * y, 128 + 224 * (color[2] - y) / 1.8556, 128 + 224 * (color[0] - y) / 1.5748};
}

VideoFrame
sampled(const Painting& painting, VideoSize size, SourceFormat format, std::uint64_t identity)
{
    if (format == SourceFormat::EightBits420)
        return sampledAs<std::uint8_t>(painting, size, 2, 1, identity);
    return sampledAs<std::uint16_t>(painting, size, 1, 4, identity);
}

} // namespace zento
