#include "TestSupport/PictureMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoIntelligence/FrameAnalyzer.h"
#include "ZentoIntelligence/PictureRegions.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zento {
namespace {

using FrameAnalyzer::bestRegion;
using FrameAnalyzer::needyClicks;

constexpr VideoSize kSize = {1280, 720};
constexpr Rect kCard = {300, 120, 420, 260};
constexpr Rect kFaintCard = {780, 120, 380, 260};
constexpr Rect kPhotograph = {300, 430, 420, 230};

Color gray(int level)
{
    return Color::gray(level / 255.0);
}

/// A page at a scale: a side bar, a card with a button and text, one that differs from the page by
/// ten levels only, and a picture full of detail.
Canvas page(int scale = 1)
{
    Canvas canvas(kSize.width * scale, kSize.height * scale);
    canvas.scale(scale, scale);
    canvas.fillAll(gray(244));
    canvas.fill(Path().rect({0, 0, 200, 720}), Color{0.12, 0.14, 0.2});
    canvas.fill(Path().roundedRect(kCard, 10), gray(255));
    canvas.stroke(Path().roundedRect(kCard, 10), {.width = 1}, gray(220));
    canvas.fill(Path().roundedRect({320, 300, 110, 38}, 8), Color{0.31, 0.43, 0.96});
    canvas.drawText("Send the invoice", {.size = 16}, {322, 170}, gray(30));
    canvas.fill(Path().rect(kFaintCard), gray(254));
    for (int i = 0; i < 42; ++i)
        canvas.fill(
            Path().rect({kPhotograph.x + 10 * i, kPhotograph.y, 5, kPhotograph.h}),
            Color{0.4 + 0.01 * i, 0.5, 0.8 - 0.01 * i});
    return canvas;
}

InputEvent click(double t, Vec2 pos)
{
    return {.t = t, .kind = EventKind::Click, .pos = pos, .button = 0};
}

InputEvent click(double t, Vec2 pos, const Rect& element)
{
    InputEvent event = click(t, pos);
    event.ax = {.role = "button", .frame = element, .title = {}};
    return event;
}

double overlap(const Rect& a, const Rect& b)
{
    const double w = std::min(a.x + a.w, b.x + b.w) - std::max(a.x, b.x);
    const double h = std::min(a.y + a.h, b.y + b.h) - std::max(a.y, b.y);
    const double common = std::max(w, 0.0) * std::max(h, 0.0);
    return common / (a.w * a.h + b.w * b.h - common);
}

TEST(BestRegion, isTheSmallestPlausibleOneAroundThePlace)
{
    constexpr VideoSize kFrame = {1000, 1000};
    const Rect outer = {100, 100, 600, 600};
    const Rect inner = {200, 200, 300, 300};
    struct Case {
        const char* name;
        Vec2 place;
        std::vector<Rect> candidates;
        std::optional<Rect> best;
    };
    const Case cases[] = {
        {"none", {300, 300}, {}, {}},
        {"elsewhere", {800, 800}, {outer, inner}, {}},
        {"the inner one of two", {300, 300}, {outer, inner}, inner},
        {"in the outer one only", {650, 650}, {outer, inner}, outer},
        {"an inner one of one percent", {300, 300}, {outer, {250, 250, 100, 100}}, outer},
        {"one of seventy percent", {300, 300}, {{0, 0, 1000, 700}}, {}},
        {"the smallest allowed", {300, 300}, {{250, 250, 150, 100}}, Rect{250, 250, 150, 100}},
        {"the largest allowed", {300, 300}, {{0, 0, 1000, 600}}, Rect{0, 0, 1000, 600}},
        {"one percent beside it", {503, 300}, {inner}, inner},
        {"three percent beside it", {509, 300}, {inner}, {}},
        {"on the grown edge", {506, 506}, {inner}, inner},
        {"equally large", {300, 300}, {inner, {250, 250, 300, 300}}, inner},
    };
    for (const auto& [name, place, candidates, best] : cases)
        EXPECT_EQ(bestRegion(place, candidates, kFrame), best) << name;
}

TEST(FrameAnalyzerTest, clicksOnUsableElementsNeedNoLook)
{
    const SessionMeta meta = {.pixelWidth = 1280, .pixelHeight = 720};
    InputEvent key = click(4, {});
    key.kind = EventKind::KeyDown;
    const InputEvent bare = click(1, {5, 5});
    const InputEvent whole = click(2, {5, 5}, {0, 0, 1280, 720});
    EXPECT_EQ(
        needyClicks({bare, whole, click(3, {15, 15}, {10, 10, 90, 30}), key}, meta),
        (std::vector{bare, whole}));
}

class FramingTest : public testing::Test {
protected:
    FramingTest()
    {
        m_bundle.url = m_folder.path();
        m_bundle.meta = {.pixelWidth = kSize.width, .pixelHeight = kSize.height, .scaleFactor = 1};
        m_bundle.events = {click(0.02, {375, 320})};
    }

    void show(const Canvas& picture) const
    {
        test::writePictures(m_bundle.screenMovieURL(), {{0, &picture}});
    }

    std::vector<FramingHint> hints() { return FrameAnalyzer::loadOrAnalyze(m_bundle); }

    test::TemporaryFolder m_folder;
    SessionBundle m_bundle;
};

TEST_F(FramingTest, findsWhatAPersonWouldPointAt)
{
    show(page());
    struct Case {
        const char* name;
        Vec2 place;
        Rect region;
    };
    const Case cases[] = {
        {"a button in a card", {375, 320}, kCard},
        {"text in a card", {370, 165}, kCard},
        {"a faint card", {1000, 300}, kFaintCard},
        {"a picture full of detail", {500, 540}, kPhotograph},
        {"a side bar at the border", {90, 400}, {0, 0, 200, 720}},
    };
    for (const auto& [name, place, region] : cases) {
        m_bundle.events = {click(0.5, place)};
        std::filesystem::remove(m_bundle.framingURL());
        const auto found = hints();
        ASSERT_EQ(found.size(), 1U) << name;
        EXPECT_EQ(found.front().sourceTime, 0.5) << name;
        EXPECT_GE(overlap(found.front().rect, region), 0.9) << name;
    }
}

TEST_F(FramingTest, hintsAreInTheRecordingsPixels)
{
    struct Case {
        const char* name;
        double scaleFactor;
        int moviesScale;
    };
    for (const auto& [name, scaleFactor, moviesScale] :
         {Case{"a movie of twice the size", 1, 2},
          Case{"a display of two pixels a point", 2, 2},
          Case{"as recorded", 1, 1}}) {
        std::filesystem::remove(m_bundle.framingURL());
        m_bundle.meta.scaleFactor = scaleFactor;
        show(page(moviesScale));
        const auto found = hints();
        ASSERT_EQ(found.size(), 1U) << name;
        EXPECT_GE(overlap(found.front().rect, kCard), 0.9) << name;
    }
}

TEST_F(FramingTest, looksAtTheFrameBeforeTheClick)
{
    Canvas empty(kSize.width, kSize.height);
    empty.fillAll(gray(244));
    const Canvas full = page();
    test::writePictures(m_bundle.screenMovieURL(), {{0, &full}, {1, &empty}});
    m_bundle.events = {click(1.04, {375, 320}), click(1.2, {375, 320})};
    const auto found = hints();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front().sourceTime, 1.04);
}

TEST_F(FramingTest, withoutANeedyClickNothingIsOpenedOrKept)
{
    m_bundle.events = {click(1, {15, 15}, {10, 10, 90, 30})};
    EXPECT_TRUE(hints().empty()); // there is no movie
    EXPECT_FALSE(std::filesystem::exists(m_bundle.framingURL()));
}

TEST_F(FramingTest, anAnalysisIsMadeOnce)
{
    Canvas empty(kSize.width, kSize.height);
    empty.fillAll(gray(244));
    show(empty);
    writeFile(m_bundle.framingURL(), "torn [");
    EXPECT_TRUE(hints().empty());
    EXPECT_TRUE(decodeFramingHints(readFile(m_bundle.framingURL())).empty());

    std::filesystem::remove(m_bundle.screenMovieURL());
    EXPECT_TRUE(hints().empty()); // what found nothing is not repeated

    const std::vector<FramingHint> kept = {{3, {1, 2, 3, 4}}};
    writeFile(m_bundle.framingURL(), encodeFramingHints(kept));
    EXPECT_EQ(hints(), kept);
}

TEST_F(FramingTest, whatEndsEarlyIsTriedAgain)
{
    EXPECT_THROW(hints(), Error); // no movie
    EXPECT_FALSE(std::filesystem::exists(m_bundle.framingURL()));

    show(page());
    std::stop_source stop;
    stop.request_stop();
    EXPECT_TRUE(FrameAnalyzer::loadOrAnalyze(m_bundle, stop.get_token()).empty());
    EXPECT_FALSE(std::filesystem::exists(m_bundle.framingURL()));
    EXPECT_EQ(hints().size(), 1U);
}

} // namespace
} // namespace zento
