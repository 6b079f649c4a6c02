#include "TestSupport/NumberedMovie.h"
#include "TestSupport/SilentWave.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/VideoDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace zento {
namespace {

using namespace test;
using testing::HasSubstr;

void write(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string bytesOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Decoder, tellsWhatCannotBeRead)
{
    const TemporaryFolder folder;
    write(folder / "empty.mov", "");
    write(folder / "text.mov", "no movie at all\n");
    write(folder / "zeros.mov", std::string(100000, '\0'));
    write(folder / "sound.wav", silentWave());
    writeNumberedRecording(folder / "whole.mov", {64, 48}, countedFrames(0, 5, 60));
    const std::string whole = bytesOf(folder / "whole.mov");
    write(folder / "torn.mov", whole.substr(0, whole.find("moov")));

    struct Case {
        std::string file;
        std::string domain;
        int code;
    };
    const std::vector<Case> cases{
        {"missing.mov", "errno", ENOENT},
        {"empty.mov", "Zento", ErrorCode::kReadingFailed},
        {"text.mov", "Zento", ErrorCode::kReadingFailed},
        {"zeros.mov", "Zento", ErrorCode::kReadingFailed},
        {"torn.mov", "Zento", ErrorCode::kReadingFailed},
        {"sound.wav", "Zento", ErrorCode::kNoVideoTrack},
        {"", "errno", EISDIR},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.file);
        const auto path = folder / row.file;
        try {
            const VideoDecoder decoder(path);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.domain(), row.domain);
            EXPECT_EQ(error.code(), row.code);
            EXPECT_THAT(error.what(), HasSubstr(path.string()));
        }
    }
    EXPECT_THROW(
        {
            try {
                const VideoDecoder decoder(folder / "sound.wav");
            } catch (const Error& error) {
                EXPECT_EQ(error.what(), "no video track in " + (folder / "sound.wav").string());
                throw;
            }
        },
        Error);
}

TEST(Decoder, aTornMovieGivesTheBeginningOrAnError)
{
    const TemporaryFolder folder;
    writeNumberedRecording(folder / "a.mov", {96, 64}, countedFrames(500, 40, 30));
    const FilmFormat format{.width = 96, .height = 64, .fps = 30, .bitRate = 1'000'000};
    writeNumberedFilm(folder / "b.mp4", format, countedNumbers(500, 40));

    for (const char* name : {"a.mov", "b.mp4"}) {
        const std::string whole = bytesOf(folder / name);
        const auto all = readNumbers(folder / name);
        ASSERT_EQ(all.size(), 40U);
        const auto timeOf = [](const NumberedFrame& frame) { return frame.time; };
        std::size_t longest = 0;
        constexpr std::size_t kCuts = 60;
        for (std::size_t cut = 0; cut < kCuts; ++cut) {
            const std::size_t size = whole.size() * cut / kCuts;
            SCOPED_TRACE(name + (" of " + std::to_string(size) + " bytes"));
            write(folder / "torn", whole.substr(0, size));
            std::vector<NumberedFrame> read;
            try {
                read = readNumbers(folder / "torn");
            } catch (const Error& error) {
                EXPECT_THAT(error.what(), HasSubstr("torn"));
            }
            ASSERT_LE(read.size(), all.size());
            // At the tear of a film a picture may lack the one it leans on; none is ever wrong.
            EXPECT_TRUE(std::ranges::includes(all, read, {}, timeOf, timeOf));
            for (const NumberedFrame& frame : read)
                EXPECT_THAT(all, testing::Contains(frame));
            longest = std::max(longest, read.size());
        }
        // The film has its index in front, so what is there of it can be shown.
        if (name == std::string("b.mp4")) {
            EXPECT_GT(longest, 20U);
        }
    }
}

TEST(Decoder, damageEndsTheMovie)
{
    struct Case {
        const char* name;
        std::size_t offset; // from the name a frame begins with
        std::size_t count;
    };
    for (const Case& row : {Case{"header", 0, 40}, Case{"one slice", 300, 60}}) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        writeNumberedRecording(folder / "a.mov", {96, 64}, countedFrames(0, 20, 30));
        std::string bytes = bytesOf(folder / "a.mov");
        std::size_t at = 0;
        for (int i = 0; i <= 10; ++i)
            at = bytes.find("icpf", at + 1);
        ASSERT_NE(at, std::string::npos);
        bytes.replace(at + row.offset, row.count, row.count, '\0');
        write(folder / "a.mov", bytes);
        const auto read = readNumbers(folder / "a.mov");
        ASSERT_EQ(read.size(), 10U);
        EXPECT_EQ(read.back().number, 9);
    }
}

void runFfmpeg(const std::string& arguments)
{
    const std::string command = "ffmpeg -y -v error " + arguments + " </dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0) << command; // NOLINT(concurrency-mt-unsafe)
}

struct Colour {
    int red = 0;
    int green = 0;
    int blue = 0;
};

/// Y', Cb, Cr of BT.709 in levels of 8 bits, limited range (ITU-R BT.709-6, 3.2 to 3.5).
std::array<double, 3> bt709(const Colour& colour)
{
    const double red = colour.red / 255.0;
    const double green = colour.green / 255.0;
    const double blue = colour.blue / 255.0;
    const double luma = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    return {16 + 219 * luma, 128 + 224 * (blue - luma) / 1.8556, 128 + 224 * (red - luma) / 1.5748};
}

std::array<double, 3> middleOf(const VideoFrame& frame)
{
    const auto middle = [](const auto& planes, double scale) {
        const auto at = [&](const auto& plane) {
            const int x = plane.width / 2;
            const int y = plane.height / 2;
            return plane.row(y)[x] * scale;
        };
        return std::array<double, 3>{at(planes.y), at(planes.cb), at(planes.cr)};
    };
    return frame.bitDepth() == 8 ? middle(frame.planes8(), 1) : middle(frame.planes10(), 0.25);
}

TEST(Decoder, sitesChromaOnTheLeftPixelOfAPair)
{
    const TemporaryFolder folder;
    // Red grows by 3 a pixel, and so Cr by 1.3: half a pixel aside would be 0.66 off everywhere.
    runFfmpeg(
        "-f lavfi -i color=s=80x32:d=0.1:r=10,format=gbrp,geq=r='3*X':g=0:b=0 -c:v png "
        + (folder / "ramp.mov").string());
    const auto frames = readFrames(folder / "ramp.mov");
    ASSERT_EQ(frames.size(), 1U);
    const auto& cr = frames[0].planes8().cr;
    ASSERT_EQ(cr.width, 40);
    double sum = 0;
    for (int x = 4; x < 36; ++x)
        sum += cr.row(8)[x] - bt709({6 * x, 0, 0})[2];
    EXPECT_NEAR(sum / 32, 0, 0.3);
}

struct Encoding {
    const char* name;
    const char* arguments;
    const char* file;
    int bitDepth;
    VideoSize size;
};

class DecoderEncoding : public testing::TestWithParam<Encoding> {};

TEST_P(DecoderEncoding, givesLimitedBt709WhateverTheFileHolds)
{
    const Encoding& encoding = GetParam();
    const TemporaryFolder folder;
    for (const Colour colour : {Colour{200, 40, 30}, {30, 180, 60}, {40, 50, 210}, {90, 90, 90}}) {
        std::array<char, 16> name{};
        std::snprintf(
            name.data(), name.size(), "0x%02x%02x%02x", colour.red, colour.green, colour.blue);
        const auto path = folder / encoding.file;
        const std::string command =
            "ffmpeg -y -v error -f lavfi -i color=c=" + std::string(name.data())
            + ":s=" + std::to_string(encoding.size.width) + "x"
            + std::to_string(encoding.size.height) + ":d=0.3:r=10,format=gbrp -vf "
            + encoding.arguments + " " + path.string() + " </dev/null";
        ASSERT_EQ(std::system(command.c_str()), 0) << command; // NOLINT(concurrency-mt-unsafe)

        const auto frames = readFrames(path);
        ASSERT_EQ(frames.size(), 3U);
        EXPECT_EQ(frames[1].bitDepth(), encoding.bitDepth);
        EXPECT_EQ(frames[1].size(), encoding.size);
        const auto expected = bt709(colour);
        const auto actual = middleOf(frames[1]);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(actual[i], expected[i], 2.5) << "component " << i << " of " << name.data();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Encodings,
    DecoderEncoding,
    testing::Values(
        Encoding{"rgb", "format=rgb24 -c:v png", "a.mov", 8, {64, 48}},
        Encoding{
            "motionJpegOfOddSize",
            "scale=out_color_matrix=bt601:out_range=pc,format=yuvj422p -c:v mjpeg -q:v 2",
            "a.mov",
            8,
            {65, 47}},
        Encoding{
            "fourFourFourTwelveBits",
            "scale=out_color_matrix=bt709:out_range=tv,format=yuv444p12,"
            "setparams=colorspace=bt709:range=tv -c:v prores_ks -profile:v 4",
            "a.mov",
            10,
            {64, 48}},
        Encoding{
            "taggedBt601",
            "scale=out_color_matrix=bt601:out_range=tv,format=yuv420p -c:v libx264 -qp 4 "
            "-colorspace smpte170m -color_range tv",
            "a.mp4",
            8,
            {1280, 720}},
        Encoding{
            "smallWithoutTags",
            "scale=out_color_matrix=bt601:out_range=tv,format=yuv420p -c:v libx264 -qp 4",
            "a.mp4",
            8,
            {64, 48}},
        Encoding{
            "largeWithoutTags",
            "scale=out_color_matrix=bt709:out_range=tv,format=yuv420p -c:v libx264 -qp 4",
            "a.mp4",
            8,
            {1280, 720}},
        Encoding{
            "fullRangeBt709",
            "scale=out_color_matrix=bt709:out_range=pc,format=yuv420p -c:v libx264 -qp 4 "
            "-colorspace bt709 -color_range pc",
            "a.mp4",
            8,
            {64, 48}},
        Encoding{
            "fullRangeTenBits",
            "scale=out_color_matrix=bt709:out_range=pc,format=yuv420p10 -c:v libx264 -qp 4 "
            "-colorspace bt709 -color_range pc",
            "a.mp4",
            10,
            {64, 48}},
        Encoding{
            "fourTwoZeroTenBits",
            "scale=out_color_matrix=bt709:out_range=tv,format=yuv420p10 -c:v libx264 -qp 4 "
            "-colorspace bt709 -color_range tv",
            "a.mp4",
            10,
            {64, 48}}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace zento
