#include "TestSupport/DiskLimits.h"
#include "TestSupport/GifReading.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/SilentWave.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoRender/GIFExporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <iterator>

namespace zento {
namespace {

using test::ReadGif;

std::string bytesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The number of a picture of `numberedFilmPicture`: the cells that are white.
int numberOf(const ReadGif& gif, const test::ShownGifFrame& frame)
{
    int number = 0;
    for (int bit = 0; bit < 16; ++bit) {
        const int x = gif.width * (2 * (bit % 4) + 1) / 8;
        const int y = gif.height * (2 * (bit / 4) + 1) / 8;
        const std::uint32_t green = gif.pixel(frame, x, y) >> 8;
        number |= (green & 0xff) > 127 ? 1 << bit : 0;
    }
    return number;
}

std::vector<int> numbersIn(const ReadGif& gif)
{
    std::vector<int> numbers(gif.frames.size());
    std::ranges::transform(gif.frames, numbers.begin(), [&](const test::ShownGifFrame& frame) {
        return numberOf(gif, frame);
    });
    return numbers;
}

class GIFExporterTest : public testing::Test {
protected:
    void film(int frames, double fps, VideoSize size = {64, 32}) const
    {
        test::writeNumberedFilm(
            m_film,
            {.width = size.width, .height = size.height, .fps = fps, .bitRate = 2000000},
            test::countedNumbers(0, frames));
    }

    /// The code and the sentence of the export's failure.
    std::pair<int, std::string> failure(double fps = 12, double maxWidth = 960) const
    {
        try {
            GIFExporter::exportGif(m_film, m_gif, fps, maxWidth);
        } catch (const Error& error) {
            return {error.code(), error.what()};
        }
        return {};
    }

    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.path()))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    test::TemporaryFolder m_folder;
    std::filesystem::path m_film = m_folder / "a.mp4";
    std::filesystem::path m_gif = m_folder / "a.gif";
};

TEST_F(GIFExporterTest, ShowsTheFirstFrameAtOrAfterEachTick)
{
    struct Case {
        const char* name;
        double filmFps;
        double gifFps;
        int filmFrames;
        double step; // film frames a tick
    };
    const Case cases[] = {
        {"a film at its usual rate", 60, 12, 121, 5},
        {"ticks between frames", 30, 12, 50, 2.5},
        {"the same rate", 12, 12, 20, 1},
        {"fewer frames than ticks: it plays faster", 10, 12, 20, 1},
        {"ticks of three hundredths and a third", 60, 30, 60, 2},
        {"one frame", 60, 12, 1, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        film(c.filmFrames, c.filmFps);
        GIFExporter::exportGif(m_film, m_gif, c.gifFps, 960);
        const ReadGif gif = test::readGif(m_gif);
        std::vector<int> expected;
        for (int tick = 0; std::ceil(tick * c.step) < c.filmFrames; ++tick)
            expected.push_back(static_cast<int>(std::ceil(tick * c.step)));
        EXPECT_EQ(numbersIn(gif), expected);
        EXPECT_TRUE(gif.playsForEver);

        int begin = 0;
        for (std::size_t i = 0; i < gif.frames.size(); ++i) {
            EXPECT_NEAR(begin, 100 * static_cast<double>(i) / c.gifFps, 0.5 + 1e-9) << i;
            begin += gif.frames[i].delay;
        }
        EXPECT_EQ(begin, std::lround(100 * static_cast<double>(expected.size()) / c.gifFps));
    }
}

TEST_F(GIFExporterTest, FramesAreMadeSmallerOnly)
{
    struct Case {
        double maxWidth;
        VideoSize size;
    };
    const Case cases[] = {
        {960, {150, 90}}, {150, {150, 90}}, {75, {75, 45}}, {33, {33, 20}}, {1, {1, 1}}};
    film(2, 12, {150, 90});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.maxWidth);
        GIFExporter::exportGif(m_film, m_gif, 12, c.maxWidth);
        const ReadGif gif = test::readGif(m_gif);
        EXPECT_EQ((VideoSize{gif.width, gif.height}), c.size);
        if (c.size.width > 8) {
            EXPECT_EQ(numbersIn(gif), (std::vector{0, 1}));
        }
    }
}

TEST_F(GIFExporterTest, SaysWhatCannotBeMadeAndLeavesWhatWasThere)
{
    using testing::AllOf;
    using testing::HasSubstr;
    using testing::Pair;
    film(20, 12);
    const std::string whole = bytesOf(m_film);
    std::string empty = whole; // the index is in front of the pictures
    const std::size_t pictures = empty.find("mdat") + 4;
    empty.replace(pictures, std::string::npos, empty.size() - pictures, '\0');
    struct Case {
        const char* name;
        std::string film;
        int code;
        const char* text;
    };
    const Case cases[] = {
        {"no picture", empty, ErrorCode::kGifNoFrames, "a.mp4: no frames to export"},
        {"sound alone", test::silentWave(), ErrorCode::kGifNoVideoTrack, "a.mp4"},
        {"no film", "a letter", ErrorCode::kGifNotRead, "a.mp4"},
    };
    for (const bool existed : {false, true}) {
        if (existed)
            std::ofstream(m_gif) << "before";
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name);
            std::ofstream(m_film, std::ios::binary) << c.film;
            EXPECT_THAT(failure(), Pair(c.code, HasSubstr(c.text)));
            EXPECT_EQ(bytesOf(m_gif), existed ? "before" : "");
            EXPECT_EQ(files().size(), existed ? 2U : 1U);
        }
    }
    std::filesystem::remove(m_film);
    EXPECT_THAT(failure(), Pair(ENOENT, HasSubstr("a.mp4")));

    std::ofstream(m_film, std::ios::binary) << whole;
    EXPECT_EQ(failure(0).first, ErrorCode::kGifNotStarted);
    EXPECT_EQ(failure(NAN).first, ErrorCode::kGifNotStarted);
    EXPECT_EQ(failure(12, 0).first, ErrorCode::kGifNotStarted);
    {
        const test::FileSizeLimit limit(500);
        const auto [code, text] = failure();
        EXPECT_TRUE(code == ErrorCode::kGifFrame || code == ErrorCode::kGifNotFinished) << text;
        EXPECT_THAT(text, AllOf(HasSubstr("a.gif"), testing::Not(HasSubstr("part"))));
    }
    EXPECT_EQ(bytesOf(m_gif), "before");
    EXPECT_THAT(files(), testing::ElementsAre("a.gif", "a.mp4"));
    EXPECT_THAT(failure(), Pair(0, ""));
    EXPECT_EQ(test::readGif(m_gif).frames.size(), 20U) << "and then it is replaced";
}

TEST_F(GIFExporterTest, CancellingEndsAtTheNextFrameAndLeavesNothing)
{
    film(40, 12);
    std::stop_source stop;
    std::vector<double> progress;
    try {
        GIFExporter::exportGif(
            m_film,
            m_gif,
            12,
            960,
            [&](double fraction) {
                progress.push_back(fraction);
                if (progress.size() == 3)
                    stop.request_stop();
            },
            stop.get_token());
        FAIL() << "not cancelled";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kCancelled);
    }
    ASSERT_EQ(progress.size(), 3U);
    EXPECT_NEAR(progress[2], 2.0 / 40, 0.03);
    EXPECT_THAT(files(), testing::ElementsAre("a.mp4"));
}

} // namespace
} // namespace zento
