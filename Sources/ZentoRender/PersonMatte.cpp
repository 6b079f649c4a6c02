#include "ZentoRender/PersonMatte.h"

#include "ZentoImaging/Blur.h"
#include "ZentoImaging/Convert.h"
#include "ZentoImaging/Scale.h"
#include "ZentoRender/PersonModel.h"

#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/dnn.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace zento {
namespace {

constexpr int kLeastSide = 8;      // pixels; what is not larger has no matte
constexpr int kStep = 16;          // the network halves its input four times
constexpr double kSoftness = 0.01; // sigma of the edge, of the width

/// The size the network sees, at the picture's own aspect.
std::array<int, 2> workingSize(int width, int height)
{
    constexpr int kLong = PersonMatte::kWorkingSize;
    const auto shorter = [](double ratio) {
        return std::max(kStep, static_cast<int>(std::lround(kLong * ratio / kStep)) * kStep);
    };
    if (width >= height)
        return {kLong, shorter(static_cast<double>(height) / width)};
    return {shorter(static_cast<double>(width) / height), kLong};
}

Picture workingPicture(const ConstPictureView& picture)
{
    const auto [width, height] = workingSize(picture.width, picture.height);
    Picture scaled(width, height, picture.layout);
    const PicturePlacement placement = {
        .origin = {},
        .scaleX = static_cast<double>(width) / picture.width,
        .scaleY = static_cast<double>(height) / picture.height};
    const Rect all = {0, 0, static_cast<double>(width), static_cast<double>(height)};
    PictureScaler scaler;
    drawScaled(scaler, picture, placement, scaled.view(), all);
    return picture.layout == Layout::Rgb ? std::move(scaled) : toRgb(std::as_const(scaled).view());
}

/// The network's input: planes R, G, B of numbers in [0, 1].
cv::Mat networkInput(const Picture& rgb)
{
    cv::Mat input(std::vector<int>{1, 3, rgb.height(), rgb.width()}, CV_32F);
    auto* out = input.ptr<float>();
    for (std::size_t p = 0; p < 3; ++p)
        for (int y = 0; y < rgb.height(); ++y)
            out = std::transform(
                rgb.plane(p).row(y),
                rgb.plane(p).row(y) + rgb.width(),
                out,
                [](std::uint8_t sample) { return static_cast<float>(sample) / 255; });
    return input;
}

/// The network's output as a matte of its own size.
Matte networkMatte(const cv::Mat& output)
{
    Matte matte = {.width = output.size[3], .height = output.size[2], .samples = {}};
    const auto* from = output.ptr<float>();
    const auto count =
        static_cast<std::size_t>(matte.width) * static_cast<std::size_t>(matte.height);
    matte.samples.resize(count);
    std::transform(from, from + count, matte.samples.begin(), [](float share) {
        return share > 0 ? static_cast<std::uint8_t>(std::lround(std::min(share, 1.0F) * 255)) : 0;
    });
    return matte;
}

Matte scaledTo(Matte matte, int width, int height)
{
    if (matte.width == width && matte.height == height)
        return matte;
    Matte scaled = {.width = width, .height = height, .samples = {}};
    scaled.samples.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    PlaneScaler scaler;
    scaler.prepare(
        matte.width,
        matte.height,
        {.origin = 0, .scale = static_cast<double>(width) / matte.width},
        {.origin = 0, .scale = static_cast<double>(height) / matte.height},
        {0, width},
        {0, height});
    scalePlane(
        scaler, matte.plane(), Plane<std::uint8_t>{scaled.samples.data(), width, height, width});
    return scaled;
}

} // namespace

struct PersonMatte::Network {
    cv::dnn::Net net;
};

PersonMatte::PersonMatte()
{
    cv::setNumThreads(1);
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    try {
        const std::span<const char> model = personModel();
        m_network = std::make_unique<Network>(
            Network{cv::dnn::readNetFromONNX(model.data(), model.size())});
    } catch (const std::exception&) {
        m_network.reset(); // without a network there is no matte
    }
}

PersonMatte::~PersonMatte() = default;
PersonMatte::PersonMatte(PersonMatte&&) noexcept = default;
PersonMatte& PersonMatte::operator=(PersonMatte&&) noexcept = default;

std::optional<Matte> PersonMatte::matte(const ConstPictureView& picture)
{
    if (!m_network || std::min(picture.width, picture.height) <= kLeastSide)
        return std::nullopt;
    Matte found;
    try {
        m_network->net.setInput(networkInput(workingPicture(picture)));
        const cv::Mat output = m_network->net.forward();
        if (output.dims != 4 || output.type() != CV_32F)
            return std::nullopt;
        found = scaledTo(networkMatte(output), picture.width, picture.height);
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
    const Plane<std::uint8_t> plane = {
        found.samples.data(), found.width, found.height, found.width};
    gaussianBlur(plane, std::max(found.width * kSoftness, 1.0));
    return found;
}

} // namespace zento
