#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/Geometry.h"
#include "ZentoMedia/WebcamWriter.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zento {
namespace {

struct Yuv {
    int y = 0;
    int cb = 0;
    int cr = 0;
};

// One colour in the three ways cameras tell it, and as a film has it: R'G'B' (200, 60, 90).
constexpr std::array<std::uint8_t, 3> kRgb = {200, 60, 90};
constexpr Yuv kBt601{106, 120, 187};
constexpr Yuv kBt709{95, 127, 188};
constexpr Yuv kFullBt601{105, 119, 196};
constexpr int kSlack = 3;

/// A picture all of one colour, with its bytes.
struct OwnedCamera {
    std::vector<std::uint8_t> bytes;
    CameraPicture picture;
};

/// `pattern`: what a row repeats.
OwnedCamera packed(CameraPixels pixels, int width, int height, const std::vector<int>& pattern)
{
    constexpr int kPadding = 32; // bytes behind every row
    const bool isPair = pixels == CameraPixels::Yuy2 || pixels == CameraPixels::Uyvy;
    const int rowBytes = width * static_cast<int>(pattern.size()) / (isPair ? 2 : 1);
    OwnedCamera camera;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < rowBytes; ++x)
            camera.bytes.push_back(
                static_cast<std::uint8_t>(pattern[static_cast<std::size_t>(x) % pattern.size()]));
        camera.bytes.insert(camera.bytes.end(), kPadding, std::uint8_t{0});
    }
    camera.picture.pixels = pixels;
    camera.picture.width = width;
    camera.picture.height = height;
    camera.picture.planes[0] = {camera.bytes.data(), rowBytes + kPadding};
    return camera;
}

/// 4:2:0, the planes behind one another.
OwnedCamera planar(CameraPixels pixels, int width, int height, const Yuv& colour)
{
    OwnedCamera camera;
    const auto luma = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    camera.bytes.assign(luma, static_cast<std::uint8_t>(colour.y));
    for (std::size_t i = 0; i < luma / 2; ++i) {
        const bool isCb = pixels == CameraPixels::Nv12 ? i % 2 == 0 : i < luma / 4;
        camera.bytes.push_back(static_cast<std::uint8_t>(isCb ? colour.cb : colour.cr));
    }
    const int chromaStride = pixels == CameraPixels::Nv12 ? width : width / 2;
    camera.picture.pixels = pixels;
    camera.picture.width = width;
    camera.picture.height = height;
    camera.picture.planes = {
        {{camera.bytes.data(), width},
         {camera.bytes.data() + luma, chromaStride},
         {camera.bytes.data() + luma + luma / 4, chromaStride}}};
    return camera;
}

OwnedCamera jpeg(const test::TemporaryFolder& folder)
{
    const std::string file = (folder / "camera.jpg").string();
    EXPECT_TRUE(test::runFfmpeg(
        "-f lavfi -i color=0xC83C5A:size=640x360 -frames:v 1 -pix_fmt yuvj422p -q:v 2 " + file));
    const std::string text = readFile(file);
    OwnedCamera camera;
    camera.bytes.assign(text.begin(), text.end());
    camera.picture.pixels = CameraPixels::Jpeg;
    camera.picture.planes[0].data = camera.bytes.data();
    camera.picture.size = camera.bytes.size();
    return camera;
}

void expectColour(const VideoFrame& frame, int x, int y, const Yuv& colour)
{
    const auto& planes = frame.planes8();
    EXPECT_NEAR(planes.y.row(y)[x], colour.y, kSlack) << x << ", " << y;
    EXPECT_NEAR(planes.cb.row(y / 2)[x / 2], colour.cb, kSlack) << x << ", " << y;
    EXPECT_NEAR(planes.cr.row(y / 2)[x / 2], colour.cr, kSlack) << x << ", " << y;
}

std::vector<VideoFrame> written(const std::filesystem::path& file, const CameraPicture& picture)
{
    WebcamWriter writer(file);
    EXPECT_TRUE(writer.append(picture, 0));
    writer.finish();
    return test::readFrames(file);
}

TEST(WebcamWriter, everyFormOfACameraGivesTheSameColour)
{
    const auto [r, g, b] = kRgb;
    const auto& [y, cb, cr] = kBt601;
    using Make = std::function<OwnedCamera(const test::TemporaryFolder&)>;
    const auto pixels = [](CameraPixels form, const std::vector<int>& pattern) {
        return Make([=](const auto&) { return packed(form, 640, 360, pattern); });
    };
    const auto planes = [](CameraPixels form, const Yuv& colour, auto change) {
        return Make([=](const auto&) {
            OwnedCamera camera = planar(form, 640, 360, colour);
            change(camera.picture);
            return camera;
        });
    };
    const auto asItIs = [](CameraPicture&) {};
    const std::vector<std::pair<std::string, Make>> cases = {
        {"BGRx", pixels(CameraPixels::Bgrx, {b, g, r, 7})},
        {"RGBx", pixels(CameraPixels::Rgbx, {r, g, b, 7})},
        {"xBGR", pixels(CameraPixels::Xbgr, {7, b, g, r})},
        {"xRGB", pixels(CameraPixels::Xrgb, {7, r, g, b})},
        {"BGR", pixels(CameraPixels::Bgr, {b, g, r})},
        {"RGB", pixels(CameraPixels::Rgb, {r, g, b})},
        {"YUY2", pixels(CameraPixels::Yuy2, {y, cb, y, cr})},
        {"UYVY", pixels(CameraPixels::Uyvy, {cb, y, cr, y})},
        {"NV12", planes(CameraPixels::Nv12, kBt601, asItIs)},
        {"I420", planes(CameraPixels::I420, kBt601, asItIs)},
        {"I420 of BT.709",
         planes(
             CameraPixels::I420,
             kBt709,
             [](CameraPicture& picture) { picture.matrix = CameraMatrix::Bt709; })},
        {"NV12 of full range",
         planes(
             CameraPixels::Nv12,
             kFullBt601,
             [](CameraPicture& picture) { picture.range = CameraRange::Full; })},
        {"JPEG", jpeg}};
    for (const auto& [name, make] : cases) {
        SCOPED_TRACE(name);
        const test::TemporaryFolder folder;
        const auto frames = written(folder / "a.mov", make(folder).picture);
        ASSERT_EQ(frames.size(), 1U);
        EXPECT_EQ(frames[0].size(), WebcamWriter::kSize);
        expectColour(frames[0], 2, 2, kBt709);
        expectColour(frames[0], 1277, 717, kBt709);
    }
}

TEST(WebcamWriter, ofAnotherShapeTheMiddleIsKept)
{
    struct Case {
        int width, height;
        Rect middle; // the rest has another colour
    };
    for (const auto& [width, height, middle] :
         {Case{640, 480, {0, 60, 640, 360}}, {1000, 360, {180, 0, 640, 360}}}) {
        SCOPED_TRACE(width);
        OwnedCamera camera = planar(CameraPixels::I420, width, height, kBt601);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (x < middle.x || x >= middle.x + middle.w || y < middle.y
                    || y >= middle.y + middle.h)
                    camera.bytes[static_cast<std::size_t>(y * width + x)] = 235;
        const test::TemporaryFolder folder;
        const auto frames = written(folder / "a.mov", camera.picture);
        for (const auto& [x, y] : {std::pair{3, 360}, {1276, 360}, {640, 3}, {640, 716}})
            EXPECT_NEAR(frames.at(0).planes8().y.row(y)[x], kBt709.y, kSlack) << x << ", " << y;
    }
}

TEST(WebcamWriter, picturesKeepTheirTimesAndDamagedOnesAreLeftOut)
{
    const test::TemporaryFolder folder;
    const OwnedCamera camera = planar(CameraPixels::I420, 64, 36, kBt601);
    const std::string noise = "\xFF\xD8 no picture";
    CameraPicture damaged;
    damaged.pixels = CameraPixels::Jpeg;
    damaged.planes[0].data = reinterpret_cast<const std::uint8_t*>(noise.data());
    damaged.size = noise.size();
    WebcamWriter writer(folder / "a.mov");
    EXPECT_FALSE(writer.append(damaged, 0));
    for (const double time : {0.0, 0.04, 0.04, 0.5})
        EXPECT_TRUE(writer.append(camera.picture, time));
    EXPECT_FALSE(writer.append(damaged, 0.6));
    writer.finish();
    std::vector<double> times;
    for (const VideoFrame& frame : test::readFrames(folder / "a.mov"))
        times.push_back(frame.time());
    ASSERT_EQ(times.size(), 4U);
    EXPECT_DOUBLE_EQ(times[0], 0);
    EXPECT_DOUBLE_EQ(times[1], 0.04);
    EXPECT_DOUBLE_EQ(times[2], 0.04 + 1.0 / 60000);
    EXPECT_DOUBLE_EQ(times[3], 0.5);
}

TEST(WebcamWriter, aMovieThatIsNotFinishedIsReadUpToItsLastSecond)
{
    const test::TemporaryFolder folder;
    const OwnedCamera camera = planar(CameraPixels::I420, 64, 36, kBt601);
    WebcamWriter writer(folder / "a.mov");
    constexpr int kPictures = 100;
    constexpr double kRate = 25;
    for (int i = 0; i < kPictures; ++i)
        writer.append(camera.picture, i / kRate);
    const auto frames = test::readFrames(folder / "a.mov");
    ASSERT_FALSE(frames.empty());
    EXPECT_GT(frames.back().time(), (kPictures - 1) / kRate - 1.1);
}

TEST(WebcamWriter, aMovieWithoutAPictureCannotBeFinished)
{
    const test::TemporaryFolder folder;
    WebcamWriter writer(folder / "a.mov");
    try {
        writer.finish();
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kCameraNotWritten);
    }
}

} // namespace
} // namespace zento
