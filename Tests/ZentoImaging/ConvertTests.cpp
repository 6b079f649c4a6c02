#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImagingTesting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zento {
namespace {

struct Bgra {
    std::vector<std::uint8_t> bytes;
    int width;
    int height;

    Bgra(int w, int h, unsigned seed)
        : bytes(noise<std::uint8_t>(4 * w, h, 256, seed).samples())
        , width(w)
        , height(h)
    {
        // Some of the extremes: black, white and the full primaries.
        const std::array<std::uint8_t, 24> extremes{0, 0,   0, 9, 255, 255, 255, 9, 255, 0, 0,   9,
                                                    0, 255, 0, 9, 0,   0,   255, 9, 255, 0, 255, 9};
        std::copy_n(extremes.begin(), std::min(extremes.size(), bytes.size()), bytes.begin());
    }
    BgraView view() const { return {bytes.data(), width, height, std::ptrdiff_t{4} * width}; }
    std::array<double, 3> rgb(int x, int y) const
    {
        const std::uint8_t* p =
            &bytes[std::size_t(4) * std::size_t(y * width + std::clamp(x, 0, width - 1))];
        return {p[2] / 255.0, p[1] / 255.0, p[0] / 255.0};
    }
};

// ITU-R BT.709-6, items 3.2 to 3.5.
std::array<double, 3> bt709(const std::array<double, 3>& rgb, int bits)
{
    const double y = 0.2126 * rgb[0] + 0.7152 * rgb[1] + 0.0722 * rgb[2];
    const double unit = std::exp2(bits - 8);
    return {
        (219 * y + 16) * unit,
        (224 * (rgb[2] - y) / 1.8556 + 128) * unit,
        (224 * (rgb[0] - y) / 1.5748 + 128) * unit};
}

struct TenBit {
    OwnedPlane<std::uint16_t> y;
    OwnedPlane<std::uint16_t> cb;
    OwnedPlane<std::uint16_t> cr;

    explicit TenBit(const Bgra& source)
        : y(source.width, source.height)
        , cb((source.width + 1) / 2, source.height)
        , cr(cb)
    {
        convert(source.view(), {y.view(), cb.view(), cr.view()});
    }
};

TEST(CaptureConversion, RoundsTheDefinition)
{
    for (const int width : {6, 7, 64, 129, 200}) {
        const Bgra source(width, 5, unsigned(width));
        const TenBit out(source);
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < width; ++x) {
                ASSERT_NEAR(out.y.at(x, y), bt709(source.rgb(x, y), 10)[0], 0.52) << width;
            }
            for (int x = 0; x < width; x += 2) {
                const auto before = bt709(source.rgb(x - 1, y), 10);
                const auto here = bt709(source.rgb(x, y), 10);
                const auto after = bt709(source.rgb(x + 1, y), 10);
                const auto mean = [&](std::size_t i) {
                    return (before[i] + 2 * here[i] + after[i]) / 4;
                };
                ASSERT_NEAR(out.cb.at(x / 2, y), mean(1), 0.52) << width << " at " << x;
                ASSERT_NEAR(out.cr.at(x / 2, y), mean(2), 0.52) << width << " at " << x;
            }
        }
    }
}

TEST(CaptureConversion, IsTheSameOnEveryProcessor)
{
    const Bgra source(187, 4, 3);
    std::vector<std::uint16_t> first;
    std::vector<std::uint8_t> firstBytes;
    forEachTarget([&](const std::string& target) {
        const TenBit out(source);
        std::vector<std::uint16_t> all = out.y.samples();
        all.insert(all.end(), out.cb.samples().begin(), out.cb.samples().end());
        all.insert(all.end(), out.cr.samples().begin(), out.cr.samples().end());
        const auto bytes = samplesOf(toPicture(source.view(), Layout::Yuv420).view());
        if (first.empty()) {
            first = all;
            firstBytes = bytes;
        }
        EXPECT_EQ(all, first) << target;
        EXPECT_EQ(bytes, firstBytes) << target;
    });
}

TEST(CaptureConversion, KeepsGreyFreeOfColour)
{
    for (int value = 0; value < 256; ++value) {
        Bgra source(2, 1, 1);
        std::ranges::fill(source.bytes, static_cast<std::uint8_t>(value));
        const TenBit out(source);
        EXPECT_EQ(out.cb.at(0, 0), 512);
        EXPECT_EQ(out.cr.at(0, 0), 512);
    }
}

TEST(Conversion, RoundTripOfFlatColoursStaysWithinTwoLevels)
{
    for (const Color& color :
         {Color{0, 0, 0}, {1, 1, 1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.2, 0.6, 0.4}}) {
        for (const Layout layout : {Layout::Yuv420, Layout::Rgb}) {
            Canvas canvas(9, 7);
            canvas.fillAll(color);
            const Picture picture = toPicture(canvas, layout);
            const Canvas back = toCanvas(picture.view());
            const std::uint32_t pixel = std::as_const(back).pixels().row(6)[8];
            EXPECT_NEAR((pixel >> 16) & 0xff, 255 * color.red, 2);
            EXPECT_NEAR((pixel >> 8) & 0xff, 255 * color.green, 2);
            EXPECT_NEAR(pixel & 0xff, 255 * color.blue, 2);
            // What fills a plane by number is what a drawing of that colour becomes.
            const auto values = planeValues(color, layout);
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(picture.plane(i).row(3)[3], values[i], 1);
            }
        }
    }
}

} // namespace
} // namespace zento
