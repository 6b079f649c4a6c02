#include "TestSupport/DiskLimits.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/FilmWriter.h"
#include "ZentoMedia/VideoDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace zento {
namespace {

using namespace test;
using testing::HasSubstr;

FilmFormat smallFormat(double fps = 60)
{
    return {.width = 160, .height = 96, .fps = fps, .bitRate = 2'000'000};
}

std::string bytesOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Big-endian number of 4 bytes.
std::uint32_t numberAt(const std::string& bytes, std::size_t offset)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8U | static_cast<std::uint8_t>(bytes.at(offset + i));
    return number;
}

void appendNoise(FilmWriter& writer, const FilmFormat& format, int count)
{
    for (int i = 0; i < count; ++i) {
        const auto picture =
            noiseFilmPicture(static_cast<unsigned>(i), format.width, format.height);
        writer.append(picture.planes, picture.samples, i);
    }
}

TEST(Film, frameIsShownAtItsIndexOverTheTruncatedRate)
{
    for (const double fps : {60.0, 30.0, 24.0, 29.97, 23.976, 1.0, 144.0}) {
        SCOPED_TRACE(fps);
        const TemporaryFolder folder;
        const auto numbers = countedNumbers(1000, 70);
        writeNumberedFilm(folder / "film.mp4", smallFormat(fps), numbers);

        const auto frames = readFrames(folder / "film.mp4");
        ASSERT_EQ(frames.size(), numbers.size());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            EXPECT_EQ(numberOf(frames[i]), numbers[i]);
            EXPECT_NEAR(frames[i].time(), static_cast<double>(i) / std::trunc(fps), 1e-9);
        }
        const std::string bytes = bytesOf(folder / "film.mp4");
        EXPECT_EQ(numberAt(bytes, bytes.find("mdhd") + 16), static_cast<std::uint32_t>(fps));
    }
}

TEST(Film, isHighProfileLimitedBt709WithItsIndexInFront)
{
    for (const FilmPreset preset : {FilmPreset::Standard, FilmPreset::Draft}) {
        const TemporaryFolder folder;
        FilmFormat format = smallFormat();
        format.preset = preset;
        writeNumberedFilm(folder / "film.mp4", format, {1, 2, 3});
        const std::string bytes = bytesOf(folder / "film.mp4");
        EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
        constexpr char kHigh = 100;
        EXPECT_EQ(bytes.at(bytes.find("avcC") + 5), kHigh);
        // primaries, transfer, matrix: 1 is BT.709; then the range, 0 is limited
        const std::string bt709("colrnclx\0\1\0\1\0\1\0", 15);
        EXPECT_NE(bytes.find(bt709), std::string::npos);
    }
}

TEST(Film, keepsTheColours)
{
    const TemporaryFolder folder;
    writeNumberedFilm(folder / "film.mp4", smallFormat(), {0, 13, 58, 63});
    for (const VideoFrame& frame : readFrames(folder / "film.mp4")) {
        ASSERT_EQ(frame.bitDepth(), 8);
        const auto& planes = frame.planes8();
        EXPECT_EQ(planes.cb.height, 48);
        const Chroma chroma = chromaOf(numberOf(frame));
        EXPECT_NEAR(planes.cb.row(20)[40], chroma.cb, 4);
        EXPECT_NEAR(planes.cr.row(20)[40], chroma.cr, 4);
    }
}

TEST(Film, averageBitRateIsTheOneAskedFor)
{
    for (const std::int64_t bitRate : {1'000'000, 4'000'000}) {
        const TemporaryFolder folder;
        FilmFormat format = smallFormat(30);
        format.bitRate = bitRate;
        FilmWriter writer(folder / "film.mp4", format);
        appendNoise(writer, format, 180);
        writer.finish();
        const double seconds = 180 / 30.0;
        const double rate = static_cast<double>(file_size(folder / "film.mp4")) * 8 / seconds;
        EXPECT_NEAR(rate / static_cast<double>(bitRate), 1, 0.15);
    }
}

TEST(Film, isTheSameWithACopyAndWithout)
{
    const TemporaryFolder folder;
    FilmFormat format = smallFormat();
    format.encoderThreads = 1;
    FilmWriter copying(folder / "copied.mp4", format);
    FilmWriter sharing(folder / "shared.mp4", format);
    for (int i = 0; i < 30; ++i) {
        // The copied picture is overwritten at once, which must not be seen.
        auto picture = noiseFilmPicture(static_cast<unsigned>(i / 3), 160, 96);
        copying.append(picture.planes, i);
        std::fill_n(picture.samples.get(), 160 * 96, std::uint8_t{16});
        const auto kept = noiseFilmPicture(static_cast<unsigned>(i / 3), 160, 96);
        sharing.append(kept.planes, kept.samples, i);
    }
    copying.finish();
    sharing.finish();
    EXPECT_EQ(bytesOf(folder / "copied.mp4"), bytesOf(folder / "shared.mp4"));
}

TEST(Film, letsGoOfEveryPicture)
{
    for (const bool isFinished : {true, false}) {
        const TemporaryFolder folder;
        const auto picture = numberedFilmPicture(5, 160, 96);
        FilmWriter writer(folder / "film.mp4", smallFormat());
        for (int i = 0; i < 10; ++i)
            writer.append(picture.planes, picture.samples, i);
        if (isFinished)
            writer.finish();
        else
            writer.cancel();
        EXPECT_EQ(picture.samples.use_count(), 1);
    }
}

TEST(Film, isCompleteOnlyWhenFinished)
{
    const TemporaryFolder folder;
    {
        FilmWriter writer(folder / "cancelled.mp4", smallFormat());
        appendNoise(writer, smallFormat(), 100);
        writer.cancel();
        writer.cancel();
        FilmWriter dropped(folder / "dropped.mp4", smallFormat());
        appendNoise(dropped, smallFormat(), 3);
    }
    for (const char* name : {"cancelled.mp4", "dropped.mp4"}) {
        EXPECT_TRUE(exists(folder / name));
        EXPECT_THROW(VideoDecoder(folder / name), Error);
    }
}

TEST(Film, replacesAFileThatExists)
{
    const TemporaryFolder folder;
    std::ofstream(folder / "film.mp4") << std::string(1 << 20, 'x');
    writeNumberedFilm(folder / "film.mp4", smallFormat(), {1, 2});
    EXPECT_EQ(readFrames(folder / "film.mp4").size(), 2U);
    EXPECT_LT(file_size(folder / "film.mp4"), 1U << 16);
}

TEST(Film, tellsWhatCannotBeWritten)
{
    struct Case {
        const char* name;
        std::string file; // in the folder unless absolute
        std::function<void(FilmFormat&)> change;
        std::function<void(FilmWriter&)> write;
        std::string domain;
        int code;
    };
    const auto keep = [](FilmFormat&) {};
    const auto write = [](FilmWriter& writer) {
        writer.append(numberedFilmPicture(1, 160, 96).planes, 0);
        writer.finish();
    };
    const auto appendTwice = [](std::int64_t first, std::int64_t second) {
        return [=](FilmWriter& writer) {
            writer.append(numberedFilmPicture(1, 160, 96).planes, first);
            writer.append(numberedFilmPicture(1, 160, 96).planes, second);
        };
    };
    const std::vector<Case> cases{
        {"no folder", "none/film.mp4", keep, write, "errno", ENOENT},
        {"a folder", "", keep, write, "errno", EISDIR},
        {"full disk", "/dev/full", keep, write, "errno", ENOSPC},
        {"odd height", "f.mp4", [](auto& f) { f.height = 95; }, write, "Zento", 3},
        {"no rate", "f.mp4", [](auto& f) { f.fps = 0; }, write, "Zento", 3},
        {"rate below 1", "f.mp4", [](auto& f) { f.fps = 0.5; }, write, "Zento", 3},
        {"rate no number", "f.mp4", [](auto& f) { f.fps = std::nan(""); }, write, "Zento", 3},
        {"no bits", "f.mp4", [](auto& f) { f.bitRate = 0; }, write, "Zento", 3},
        {"other size", "f.mp4", [](auto& f) { f.width = 320; }, write, "Zento", 6},
        {"same index", "f.mp4", keep, appendTwice(4, 4), "Zento", 6},
        {"earlier index", "f.mp4", keep, appendTwice(4, 3), "Zento", 6},
        {"negative index", "f.mp4", keep, appendTwice(-1, 0), "Zento", 6},
        {"no frames", "f.mp4", keep, [](FilmWriter& w) { w.finish(); }, "Zento", 7},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        const auto path = folder / row.file;
        FilmFormat format = smallFormat();
        row.change(format);
        try {
            FilmWriter writer(path, format);
            row.write(writer);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.domain(), row.domain);
            EXPECT_EQ(error.code(), row.code);
            EXPECT_THAT(error.what(), HasSubstr(path.string()));
        }
    }
}

TEST(Film, fullDiskIsToldWhereverItIsMet)
{
    struct Case {
        const char* name;
        int frames;
        std::uint64_t limit;
    };
    // The first bytes leave the buffer after a megabyte, or when the film is finished.
    const std::vector<Case> cases{
        {"while appending", 400, 1 << 20},
        {"while finishing", 100, 100 << 10},
        {"in the index", 100, 0}, // everything but the last bytes fits
    };
    FilmFormat format = smallFormat();
    format.bitRate = 8'000'000;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        const auto path = folder / "film.mp4";
        std::uint64_t limit = row.limit;
        if (limit == 0) {
            FilmWriter writer(path, format);
            appendNoise(writer, format, row.frames);
            writer.finish();
            limit = file_size(path) - 1;
        }
        const FileSizeLimit fileSize(limit);
        try {
            FilmWriter writer(path, format);
            appendNoise(writer, format, row.frames);
            writer.finish();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.domain(), "errno");
            EXPECT_EQ(error.code(), EFBIG);
            EXPECT_THAT(error.what(), HasSubstr(path.string()));
        }
    }
}

} // namespace
} // namespace zento
