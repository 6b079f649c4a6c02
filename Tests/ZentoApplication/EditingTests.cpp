#include "TestSupport/NumberedMovie.h"
#include "Zento/Model/PlanSources.h"
#include "ZentoApplication/RunningZento.h"
#include "ZentoCore/Analyses.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/ProResWriter.h"
#include "ZentoMedia/VideoSeeker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace zento::test {

namespace {

constexpr VideoSize kSize{640, 360};
constexpr double kLength = 24; // seconds
constexpr double kFirstClick = 4;
constexpr double kSecondClick = 17;
constexpr double kCaption = 11;
constexpr double kCaptionEnd = 14;
constexpr double kQuiet = 15; // of the film: no zoom and no caption

/// A picture from which a film tells what it shows of it: luma grows from left to right, so that
/// its slope is the zoom; chroma grows with the time.
RecordedPicture ramp(double time)
{
    RecordedPicture picture = numberedRecordedPicture(0, kSize.width, kSize.height);
    const auto fill = [](const auto& plane, auto value) {
        for (int y = 0; y < plane.height; ++y)
            for (int x = 0; x < plane.width; ++x)
                plane.row(y)[x] = static_cast<std::uint16_t>(std::lround(value(x)));
    };
    const double width = kSize.width;
    fill(picture.planes.y, [&](int x) { return 256 + 400 * x / width; });
    fill(picture.planes.cb, [&](int) { return 320 + 384 * time / kLength; });
    fill(picture.planes.cr, [&](int) { return 512.0; });
    return picture;
}

/// Something is said all the time, most of it without words: so none of it is cut or sped up.
void writeRecording(const std::filesystem::path& recordings)
{
    SessionBundle bundle;
    bundle.url = recordings / "2026-03-09T14-05-33Z.zento";
    bundle.meta = {
        .pixelWidth = kSize.width,
        .pixelHeight = kSize.height,
        .scaleFactor = 1,
        .nominalFPS = 10,
        .duration = kLength};
    for (const double t : {kFirstClick, kSecondClick})
        bundle.events.push_back({.t = t, .kind = EventKind::Click, .pos = {320, 180}});
    bundle.writeMetadata();
    writeFile(
        bundle.transcriptURL(),
        encodeTranscript(
            {{0, kCaption, ""}, {kCaption, kCaptionEnd, "one"}, {kCaptionEnd, kLength, ""}}));
    ProResWriter writer(bundle.url / "screen.mov", kSize.width, kSize.height);
    for (int i = 0; i < kLength * 10; ++i)
        while (!writer.append(ramp(i / 10.0).planes, i / 10.0))
            std::this_thread::yield();
    writer.finish();
}

/// What a film shows at some time, read off the picture.
class Film {
public:
    explicit Film(const std::filesystem::path& file)
        : m_seeker(file)
        , m_slope(slopeAt(kQuiet))
    {
    }

    /// The recording's time that is shown at a time of the film.
    double sourceTime(double time)
    {
        const auto frame = m_seeker.frame(time).value();
        const auto& plane = frame.planes8().cb;
        const int level = plane.row(plane.height / 3)[plane.width / 2];
        return (level - 80) / 96.0 * kLength;
    }

    /// Against the film without a zoom.
    double zoomAt(double time) { return m_slope / std::max(slopeAt(time), 0.1); }

    /// How many columns of the lower part a caption covers.
    int captionWidth(double time)
    {
        const auto shown = m_seeker.frame(time).value();
        const auto without = m_seeker.frame(kQuiet).value();
        int columns = 0;
        for (int x = 0; x < shown.width(); ++x) {
            bool differs = false;
            for (int y = shown.height() * 3 / 4; y < shown.height(); ++y)
                differs =
                    differs
                    || std::abs(shown.planes8().y.row(y)[x] - without.planes8().y.row(y)[x]) > 24;
            columns += differs ? 1 : 0;
        }
        return columns;
    }

private:
    /// How much brighter the picture becomes over three tenths of its width, the median of some
    /// rows: a pointer may lie on one of them.
    double slopeAt(double time)
    {
        const auto frame = m_seeker.frame(time).value();
        const auto& plane = frame.planes8().y;
        std::vector<double> slopes;
        for (int i = 0; i < 9; ++i) {
            const auto* const row = plane.row(plane.height * (15 + 3 * i) / 100);
            slopes.push_back(row[plane.width * 65 / 100] - row[plane.width * 35 / 100]);
        }
        std::ranges::nth_element(slopes, slopes.begin() + 4);
        return slopes[4];
    }

    VideoSeeker m_seeker;
    double m_slope;
};

/// The editor of a recording made up here, and its edits as they are saved.
class Editing {
public:
    Editing()
        : m_zento(kSettings, kRemembered, writeRecording)
        , m_bundle(SessionBundle::load(m_zento.recordings().at(0)))
    {
        m_zento.click(RunningZento::element("list item", "")); // the library's only one
        m_zento.await(zoom(1));
        m_zento.await(zoom(2));
    }

    RunningZento& zento() { return m_zento; }
    const SessionBundle& bundle() const { return m_bundle; }
    SavedOverrides edits() const { return loadSavedOverrides(m_bundle); }

    /// Waits until what is saved fits.
    void await(const std::function<bool(const SavedOverrides&)>& fits, const std::string& what)
    {
        RunningZento::await([&] { return fits(edits()); }, what + "; " + m_zento.messages());
    }

    /// The planned ones by their time: their names tell it.
    static ElementQuery zoom(int number)
    {
        const char* const begins = number == 1 ? "[2-8]\\.." : "1[5-9]\\..";
        return RunningZento::element("list item", std::string("Zoom .*, ") + begins + " to .*");
    }

    /// The place in a lane of the timeline for a time: none of the film is cut.
    Vec2 place(const std::string& lane, double time)
    {
        const Rect frame = m_zento.frameOf(RunningZento::element("list", lane));
        return {frame.x + frame.w * time / kLength, frame.y + frame.h / 2};
    }
    double pointsPerSecond()
    {
        return m_zento.frameOf(RunningZento::element("list", "Zooms")).w / kLength;
    }

    void dragBy(Vec2 from, double seconds)
    {
        m_zento.drag(from, {from.x + seconds * pointsPerSecond(), from.y});
    }

    /// Presses until the button no longer names a step.
    void repeat(const std::vector<std::string>& keys, const std::string& name)
    {
        const auto step = RunningZento::element("push button", name + " .+");
        for (int i = 0; i < 20 && m_zento.isShown(step); ++i)
            m_zento.press(keys);
        m_zento.await(RunningZento::element("push button", name));
    }

private:
    static constexpr auto kSettings =
        R"({"cutIdle": false, "typingSpeed": 1, "fps": 6, "revealAfterExport": false})";
    static constexpr auto kRemembered = "[General]\nwelcomeShown=true\n";

    RunningZento m_zento;
    SessionBundle m_bundle;
};

Vec2 rightEdge(const Rect& frame)
{
    return {frame.x + frame.w - 3, frame.y + frame.h / 2};
}

/// Every edit a hand can make on the timeline; the edits as they are saved then.
SavedOverrides editEverything(Editing& editing)
{
    RunningZento& zento = editing.zento();
    editing.dragBy(zento.frameOf(Editing::zoom(1)).center(), 1.5);
    editing.await(
        [](const auto& edits) { return edits.zoomEdits.size() == 1; }, "The zoom is not moved");
    editing.dragBy(rightEdge(zento.frameOf(Editing::zoom(1))), -7);
    editing.await(
        [](const auto& edits) { return edits.zoomEdits.at(0).hold.has_value(); },
        "The zoom is not stretched");
    zento.chooseFromMenu(Editing::zoom(2), RunningZento::element("menu item", "Delete Zoom"));
    editing.await(
        [](const auto& edits) { return edits.deletedZooms.size() == 1; }, "No zoom is deleted");
    zento.doubleClick(editing.place("Zooms", 20.3));
    editing.await(
        [](const auto& edits) { return edits.addedZooms.size() == 1; }, "No zoom is added");
    editing.dragBy(
        zento.frameOf(RunningZento::element("slider", "Start of the film.*")).center(), 1);
    editing.await([](const auto& edits) { return edits.trimStart > 0; }, "The start stays");
    editing.dragBy(
        zento.frameOf(RunningZento::element("slider", "End of the film.*")).center(), -1.5);
    editing.await([](const auto& edits) { return edits.trimEnd > 0; }, "The end stays");
    return editing.edits();
}

TEST(Application, EveryEditOfTheTimelineIsInTheFilm)
{
    const std::string words = "This is what was said, put right by a hand";
    Editing editing;
    RunningZento& zento = editing.zento();
    const SavedOverrides edits = editEverything(editing);
    EXPECT_EQ(edits.zoomEdits.size(), 1U);

    zento.click(RunningZento::element("list item", "one, .*"));
    zento.await(RunningZento::element("push button", "Remove caption"));
    zento.type(words);
    zento.press({"Return"});
    zento.await(RunningZento::element("list item", words + ", .*"));

    editing.repeat({"Control_L", "z"}, "Undo");
    editing.await(
        [](const auto& left) { return left == SavedOverrides{}; }, "Not all of it is undone");
    editing.repeat({"Control_L", "Shift_L", "z"}, "Redo");
    editing.await([&](const auto& again) { return again == edits; }, "Not all of it is redone");

    zento.click(RunningZento::element("push button", "Export"));
    const auto sheet = RunningZento::element("push button", "Change…");
    zento.await(sheet);
    RunningZento::await( // it is shown before it has the keyboard
        [&] {
            zento.press({"Return"});
            return !zento.isShown(sheet);
        },
        "The sheet stays");
    RunningZento::await(
        [&] { return std::filesystem::exists(editing.bundle().filmURL()); },
        "The film does not appear");

    Film film(editing.bundle().filmURL());
    const auto inFilm = [&](double source) { return source - edits.trimStart; };
    constexpr double kAboutNow = 0.4; // a level of chroma is a quarter of a second
    EXPECT_NEAR(film.sourceTime(0), edits.trimStart, kAboutNow);
    EXPECT_NEAR(film.sourceTime(1000), edits.trimEnd, kAboutNow);
    EXPECT_NEAR(film.sourceTime(inFilm(15)), 15, kAboutNow);

    const Overrides::ZoomEdit& zoom = edits.zoomEdits.at(0);
    const double moved = zoom.newSourceTime.value();
    EXPECT_NEAR(moved - kFirstClick, 1.5, 0.2);
    EXPECT_NEAR(film.zoomAt(inFilm(kFirstClick)), 1, 0.05) << "before the moved zoom";
    EXPECT_GT(film.zoomAt(inFilm(moved + 0.8)), 1.2) << "the moved zoom";
    // Without its hold it would last until the second click.
    EXPECT_GT(film.zoomAt(inFilm(moved + zoom.hold.value() / 2)), 1.2) << "within its hold";
    EXPECT_NEAR(film.zoomAt(inFilm(moved + zoom.hold.value() + 1)), 1, 0.05) << "after its hold";
    EXPECT_NEAR(film.zoomAt(inFilm(kSecondClick + 0.5)), 1, 0.05) << "the deleted zoom";
    EXPECT_GT(film.zoomAt(inFilm(edits.addedZooms.at(0).sourceTime + 0.9)), 1.2) << "the added";

    EXPECT_EQ(film.captionWidth(inFilm(kCaptionEnd) + 0.7), 0);
    EXPECT_GT(film.captionWidth(inFilm(12.5)), 400) << "\"one\" is a tenth as wide";
}

} // namespace

} // namespace zento::test
