#include "TestSupport/NumberedMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoMedia/VideoDecoder.h"
#include "ZentoRender/FilmFrames.h"
#include "ZentoRender/OfflineExporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

namespace zento {
namespace {

using testing::HasSubstr;

std::string bytesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> filesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

/// A recording of 4 s at 60 frames per second, numbered from 0, and a plan that shows it whole.
class OfflineExporterTest : public testing::Test {
protected:
    OfflineExporterTest()
    {
        m_bundle.url = m_folder / "a.zento";
        std::filesystem::create_directory(m_bundle.url);
        m_bundle.meta = {.pixelWidth = 128, .pixelHeight = 96, .duration = 4};
        m_plan.output = {.width = 128, .height = 96, .fps = 60};
        m_plan.style.padding = 0;
        m_plan.style.cornerRadius = 0;
        m_plan.timeRemap = {{0, 4, 1}};
    }

    void record(int frames = 240)
    {
        test::writeNumberedRecording(
            m_bundle.screenMovieURL(), {128, 96}, test::countedFrames(0, frames, 60));
    }

    OfflineExporter exporter() const { return {m_bundle, m_plan}; }

    /// The message of the export's failure.
    std::string failure() const
    {
        try {
            exporter().exportFilm(m_film);
        } catch (const Error& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryFolder m_folder;
    std::filesystem::path m_film = m_folder / "a.mp4";
    SessionBundle m_bundle;
    EditPlan m_plan;
};

TEST_F(OfflineExporterTest, ShowsTheFrameTheCurveSays)
{
    record();
    struct Case {
        const char* name;
        std::vector<SpeedSegment> timeRemap;
        double fps;
    };
    const Case cases[] = {
        {"as recorded", {{0, 1, 1}}, 60},
        {"a cut", {{0.5, 1, 1}, {2, 2.5, 1}}, 60},
        {"twice the speed after a ramp", {{0, 1, 1}, {1, 4, 2}}, 60},
        {"cut, fast and slow at 30", {{0, 1.1, 2}, {1.1, 1.9, 0.8}, {3, 3.7, 1}}, 30},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_plan.timeRemap = c.timeRemap;
        m_plan.output.fps = c.fps;
        std::vector<OfflineExporter::Progress> progress;
        exporter().exportFilm(m_film, [&](const auto& p) { progress.push_back(p); });

        const RemapCurve curve(c.timeRemap);
        const int total = static_cast<int>(std::floor(curve.outputDuration() * c.fps));
        const auto frames = test::readNumbers(m_film);
        ASSERT_EQ(static_cast<int>(frames.size()), total);
        for (int i = 0; i < total; ++i) {
            const auto& frame = frames[static_cast<std::size_t>(i)];
            // The last frame at or before, as the recording's clock of 1/60000 s tells it.
            const double shown = curve.sourceTime(1 / c.fps * i) * 60;
            EXPECT_GE(shown + 1e-3, frame.number) << i;
            EXPECT_LT(shown - 1e-3, frame.number + 1) << i;
            EXPECT_NEAR(frame.time, i / c.fps, 1e-6) << i;
            EXPECT_EQ(
                progress.at(static_cast<std::size_t>(i)),
                (OfflineExporter::Progress{i + 1, total}));
        }
        EXPECT_THAT(filesIn(m_folder.path()), testing::ElementsAre("a.mp4", "a.zento"));
    }
}

TEST_F(OfflineExporterTest, ASourceThatEndsEarlyShowsItsLastFrame)
{
    record(30);
    m_plan.timeRemap = {{0, 1, 1}};
    exporter().exportFilm(m_film);
    const auto frames = test::readNumbers(m_film);
    ASSERT_EQ(frames.size(), 60U);
    EXPECT_EQ(frames[20].number, 20);
    EXPECT_EQ(frames[45].number, 29);
    EXPECT_EQ(frames[59].number, 29);
}

TEST_F(OfflineExporterTest, ReusingFramesGivesTheSameFile)
{
    // Still, then moving, still again; a camera move, clicks, a pointer that hides, texts.
    std::vector<test::NumberedFrame> frames;
    frames.reserve(120);
    for (int i = 0; i < 120; ++i)
        frames.push_back({.number = i < 40 || i > 80 ? 5 : i, .time = i / 60.0});
    test::writeNumberedRecording(m_bundle.screenMovieURL(), {128, 96}, frames);
    m_plan.timeRemap = {{0, 2, 1}};
    m_plan.style.padding = 0.08;
    m_plan.style.cornerRadius = 9;
    m_plan.camera = {{0, {64, 48}, 1}, {0.9, {30, 30}, 1.8}};
    m_plan.cursor = {{0, {20, 20}, "arrow"}, {0.4, {20, 20}, "arrow"}, {0.7, {90, 60}, "iBeam"}};
    m_plan.clicks = {{0.35, {20, 20}}};
    m_plan.keystrokes = {{{0.5, 1.2, "K"}}};
    m_plan.captions = {{{0.2, 0.8, "words"}, {0.8, 1.4, "more"}}};
    m_plan.chapters = {{{0.1, "C"}}};
    m_plan.titleCard = TextCard{.title = "T", .duration = 1.5};
    m_plan.endCard = TextCard{.title = "E", .duration = 0.5, .design = "glow"};
    exporter().exportFilm(m_film);
    OfflineExporter(m_bundle, m_plan, OfflineExporter::Repeats::Compose)
        .exportFilm(m_folder / "plain.mp4");
    const std::string film = bytesOf(m_film);
    EXPECT_GT(film.size(), 5000U);
    EXPECT_TRUE(film == bytesOf(m_folder / "plain.mp4"));
}

TEST_F(OfflineExporterTest, WhatCannotBeMadeSaysWhyAndLeavesNoFile)
{
    struct Case {
        const char* name;
        std::function<void()> prepare;
        std::vector<std::string> says;
    };
    const Case cases[] = {
        {"no recording",
         [&] { std::filesystem::remove(m_bundle.screenMovieURL()); },
         {"screen.mov"}},
        {"an unreadable recording",
         [&] { std::ofstream(m_bundle.screenMovieURL()) << "torn"; },
         {"screen.mov"}},
        {"nothing kept", [&] { m_plan.timeRemap.clear(); }, {"a.mp4", "no frame"}},
        {"an odd width", [&] { m_plan.output.width = 129; }, {"a.mp4", "129 × 96"}},
        {"an odd height", [&] { m_plan.output.height = 95; }, {"a.mp4", "128 × 95"}},
        {"no size", [&] { m_plan.output = {}; }, {"a.mp4", "0 × 0"}},
        {"no rate", [&] { m_plan.output.fps = 0; }, {"a.mp4", "frames per second"}},
        {"no folder", [&] { m_film = m_folder / "gone" / "a.mp4"; }, {"gone", "No such"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        record(10);
        const EditPlan plan = m_plan;
        c.prepare();
        const std::string message = failure();
        for (const std::string& part : c.says)
            EXPECT_THAT(message, HasSubstr(part));
        EXPECT_THAT(filesIn(m_folder.path()), testing::ElementsAre("a.zento"));
        m_plan = plan;
    }
}

TEST_F(OfflineExporterTest, CancellingEndsSoonAndLeavesTheFilmThatWasThere)
{
    record();
    std::ofstream(m_film) << "the film before";
    std::stop_source stop;
    int frames = 0;
    try {
        exporter().exportFilm(
            m_film,
            [&](const auto& progress) {
                EXPECT_EQ(bytesOf(m_film), "the film before");
                frames = progress.frame;
                if (frames == 3)
                    stop.request_stop();
            },
            stop.get_token());
        FAIL() << "not cancelled";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kCancelled) << error.what();
    }
    EXPECT_EQ(frames, 3) << "no frame is written after the request";
    EXPECT_EQ(bytesOf(m_film), "the film before");
    EXPECT_THAT(filesIn(m_folder.path()), testing::ElementsAre("a.mp4", "a.zento"));
}

TEST_F(OfflineExporterTest, AFailureWhileWritingLeavesTheFilmThatWasThere)
{
    record();
    std::ofstream(m_film) << "the film before";
    EXPECT_THROW(
        exporter().exportFilm(
            m_film,
            [](const auto& progress) {
                if (progress.frame == 2)
                    throw Error(77, "the caller gives up");
            }),
        Error);
    EXPECT_EQ(bytesOf(m_film), "the film before");
    EXPECT_THAT(filesIn(m_folder.path()), testing::ElementsAre("a.mp4", "a.zento"));

    exporter().exportFilm(m_film);
    EXPECT_EQ(test::readFrames(m_film).size(), 240U) << "and the next one replaces it";
}

TEST_F(OfflineExporterTest, TheCameraFollowsThePlan)
{
    record();
    m_plan.timeRemap = {{0, 3, 1}};
    // At zoom 4 on the first cell, the whole frame shows bit 0 of the number.
    m_plan.camera = {{0, {16, 12}, 4}};
    m_plan.style.cursorStyle = "hidden";
    exporter().exportFilm(m_film);
    const auto frames = test::readFrames(m_film);
    ASSERT_EQ(frames.size(), 180U);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const auto luma = frames[i].planes8().y;
        EXPECT_EQ(luma.row(48)[64] > 126, i % 2 == 1) << i;
    }
}

TEST_F(OfflineExporterTest, CardsStandBeforeAndAfterTheMainPart)
{
    constexpr int kFirst = 0x9A53; // a pattern no other picture shows
    std::vector<test::NumberedFrame> recorded;
    recorded.reserve(60);
    for (int i = 0; i < 60; ++i)
        recorded.push_back({.number = kFirst + i, .time = i / 60.0});
    test::writeNumberedRecording(m_bundle.screenMovieURL(), {128, 96}, recorded);
    m_plan.timeRemap = {{0, 1, 1}};
    m_plan.output.fps = 30;
    m_plan.titleCard = TextCard{.title = "Title", .duration = 0.55}; // 16.5 frames: 17
    m_plan.endCard = TextCard{.title = "End", .duration = 0.4};
    // The camera would have long arrived at the first cell, had it moved during the title.
    m_plan.camera = {{0, {64, 48}, 1}, {0.01, {16, 12}, 4}};
    m_plan.style.cursorStyle = "hidden";
    m_plan.style.background = Background::Color{"#000000"};
    std::vector<OfflineExporter::Progress> progress;
    exporter().exportFilm(m_film, [&](const auto& p) { progress.push_back(p); });
    const auto frames = test::readFrames(m_film);
    ASSERT_EQ(frames.size(), 17U + 30U + 12U);
    ASSERT_EQ(progress.size(), frames.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_NEAR(frames[i].time(), static_cast<double>(i) / 30, 1e-6) << i;
        EXPECT_EQ(
            progress[i],
            (OfflineExporter::Progress{static_cast<int>(i) + 1, static_cast<int>(frames.size())}));
    }
    EXPECT_EQ(test::numberOf(frames[17]), kFirst) << "the main part begins at its first frame";
    const auto brightest = [&](std::size_t i) {
        const auto luma = frames[i].planes8().y;
        int most = 0;
        for (int y = 0; y < luma.height; ++y)
            most = std::max<int>(most, *std::max_element(luma.row(y), luma.row(y) + luma.width));
        return most;
    };
    for (const std::size_t faded : {0U, 47U})
        EXPECT_LT(brightest(faded), 60) << "a card begins with the background alone: " << faded;
    for (const std::size_t seen : {8U, 53U})
        EXPECT_GT(brightest(seen), 90) << "and is seen in its middle: " << seen;
}

TEST_F(OfflineExporterTest, AFilmMayBeACardAlone)
{
    record(2);
    m_plan.timeRemap.clear();
    m_plan.endCard = TextCard{.title = "The end", .duration = 0.2};
    exporter().exportFilm(m_film);
    EXPECT_EQ(test::readFrames(m_film).size(), 12U);
    m_plan.endCard->duration = 0.008;
    EXPECT_THAT(failure(), HasSubstr("no frame"));
    m_plan.titleCard = TextCard{.title = "T", .duration = 1e300};
    EXPECT_THAT(failure(), HasSubstr("too long"));
}

TEST(FilmFramesTest, RoundsCardsAndFloorsTheMainPart)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    struct Case {
        const char* name;
        double fps;
        double titleDuration;
        double mainDuration;
        std::optional<FilmFrames> expected;
    };
    const Case cases[] = {
        {"whole seconds", 30, 2, 1, FilmFrames{60, 30, 30}},
        {"half a frame of a card counts", 30, 0.05, 1, FilmFrames{2, 30, 30}},
        {"less does not", 30, 0.0499, 1, FilmFrames{1, 30, 30}},
        {"nor a part of a main frame", 30, 1, 0.999, FilmFrames{30, 29, 30}},
        {"a broken rate", 29.97, 2.2, 1, FilmFrames{66, 29, 30}},
        {"no duration", 60, 0, 0.5, FilmFrames{0, 30, 60}},
        {"a negative one", 60, -3, 0.5, FilmFrames{0, 30, 60}},
        {"no number", 60, std::numeric_limits<double>::quiet_NaN(), 0.5, FilmFrames{0, 30, 60}},
        {"endless", 60, kInfinity, 0.5, std::nullopt},
        {"too many to count", 60, 1e8, 0.5, std::nullopt},
    };
    for (const Case& c : cases) {
        EditPlan plan;
        plan.output.fps = c.fps;
        plan.titleCard = TextCard{.title = "T", .duration = c.titleDuration};
        plan.endCard = TextCard{.title = "E", .duration = 1};
        EXPECT_EQ(filmFrames(plan, RemapCurve({{0, c.mainDuration, 1}})), c.expected) << c.name;
        plan.titleCard.reset();
        plan.endCard.reset();
        const auto bare = filmFrames(plan, RemapCurve({{0, c.mainDuration, 1}}));
        EXPECT_EQ(bare->total(), std::floor(c.mainDuration * c.fps)) << c.name;
    }
}

} // namespace
} // namespace zento
