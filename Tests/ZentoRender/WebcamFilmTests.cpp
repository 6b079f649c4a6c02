#include "TestSupport/NumberedMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/RemapCurve.h"
#include "ZentoRender/OfflineExporter.h"
#include "ZentoRender/WebcamSource.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

namespace zento {
namespace {

std::string bytesOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A bundle with a recording of 2 s at 60 frames per second and a webcam of 1 s at 15, both
/// numbered from 0; the webcam began 0.4 s after the recording.
class WebcamFilmTest : public testing::Test {
protected:
    WebcamFilmTest()
    {
        m_bundle.url = m_folder / "a.zento";
        std::filesystem::create_directory(m_bundle.url);
        m_bundle.meta = {.pixelWidth = 128, .pixelHeight = 96, .duration = 2};
        test::writeNumberedRecording(
            m_bundle.screenMovieURL(), {128, 96}, test::countedFrames(0, 120, 60));
        test::writeNumberedRecording(
            m_bundle.webcamURL(), {96, 96}, test::countedFrames(0, 15, 15));
        m_plan.output = {.width = 128, .height = 96, .fps = 60};
        m_plan.style.padding = 0;
        m_plan.style.cornerRadius = 0;
        m_plan.timeRemap = {{0, 2, 1}};
        m_plan.webcam = WebcamPlan{
            .file = "webcam.mov",
            .offset = 0.4,
            .size = 1,
            .ring = false,
            .roundness = 0,
            .shadow = false};
    }

    std::string film(OfflineExporter::Repeats repeats = OfflineExporter::Repeats::Reuse)
    {
        OfflineExporter(m_bundle, m_plan, repeats).exportFilm(m_film);
        return bytesOf(m_film);
    }

    /// The webcam's picture at a time of the recording; -1 for none.
    int numberAt(WebcamSource& source, double t) const
    {
        const auto frame = source.frame(t);
        return frame ? test::numberOf(*frame) : -1;
    }

    test::TemporaryFolder m_folder;
    std::filesystem::path m_film = m_folder / "a.mp4";
    SessionBundle m_bundle;
    EditPlan m_plan;
};

TEST_F(WebcamFilmTest, TheWebcamRunsOnTheRecordingsClock)
{
    struct Case {
        const char* name;
        std::string file;
        double offset;
        std::vector<std::pair<double, int>> shown; // at seconds of the recording
    };
    const Case cases[] = {
        {"in the bundle", "webcam.mov", 0.4, {{0, 0}, {0.45, 0}, {0.8, 6}, {1.39, 14}, {1.9, 14}}},
        {"began before", "webcam.mov", -0.2, {{0, 3}, {0.45, 9}, {1.9, 14}}},
        {"by its path", m_bundle.webcamURL().string(), 0, {{0, 0}, {0.5, 7}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WebcamPlan plan = *m_plan.webcam;
        plan.file = c.file;
        plan.offset = c.offset;
        WebcamSource source(plan, m_bundle.url);
        for (const auto& [t, number] : c.shown)
            EXPECT_EQ(numberAt(source, t), number) << t;
    }
}

TEST_F(WebcamFilmTest, EveryFrameOfTheFilmShowsItsWebcamPicture)
{
    m_plan.timeRemap = {{0, 0.5, 1}, {0.9, 1.5, 2}};
    film();
    const RemapCurve curve(m_plan.timeRemap);
    const auto frames = test::readFrames(m_film);
    ASSERT_EQ(frames.size(), std::size_t(std::floor(curve.outputDuration() * 60)));
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double t = std::max(curve.sourceTime(double(i) / 60) - 0.4, 0.0) * 15;
        if (std::abs(t - std::round(t)) < 0.02)
            continue;   // which of two, rounding says
        int number = 0; // in 4 × 4 cells of 24 pixels, the first at (3.36, -3.36)
        for (int bit = 0; bit < 16; ++bit) {
            const auto luma = frames[i].planes8().y;
            if (luma.row(9 + 24 * (bit / 4))[15 + 24 * (bit % 4)] > 126)
                number |= 1 << bit;
        }
        EXPECT_EQ(number, std::min(static_cast<int>(t), 14)) << i;
    }
}

TEST_F(WebcamFilmTest, WithoutAReadableWebcamTheFilmIsMadeWithoutIt)
{
    const std::optional<WebcamPlan> plan = m_plan.webcam;
    m_plan.webcam.reset();
    const std::string without = film();
    m_plan.webcam = plan;
    EXPECT_NE(film(), without);
    struct Case {
        const char* name;
        std::string file;
        std::function<void(const std::filesystem::path&)> make;
    };
    const Case cases[] = {
        {"missing", "gone.mov", [](const auto&) {}},
        {"no name", "", [](const auto&) {}},
        {"empty", "empty.mov", [](const auto& path) { std::ofstream stream(path); }},
        {"no movie", "text.mov", [](const auto& path) { std::ofstream(path) << "no movie"; }},
        {"a folder", "folder", [](const auto& path) { std::filesystem::create_directory(path); }},
        {"cut off",
         "short.mov",
         [&](const auto& path) {
             std::ofstream(path) << bytesOf(m_bundle.webcamURL()).substr(0, 5000);
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        if (!c.file.empty())
            c.make(m_bundle.url / c.file);
        m_plan.webcam->file = c.file;
        EXPECT_TRUE(film() == without);
    }
}

TEST_F(WebcamFilmTest, AWebcamDamagedInTheMiddleKeepsItsLastGoodPicture)
{
    std::string bytes = bytesOf(m_bundle.webcamURL());
    const std::size_t middle = bytes.size() / 2;
    for (std::size_t i = middle; i < middle + bytes.size() / 8; ++i)
        bytes[i] = '\x5a';
    std::ofstream(m_bundle.webcamURL(), std::ios::binary) << bytes;
    WebcamSource source(m_plan.webcam, m_bundle.url);
    EXPECT_EQ(numberAt(source, 0.5), 1);
    const int last = numberAt(source, 1.6);
    EXPECT_GE(last, 1);
    EXPECT_LT(last, 14);
    film();
    EXPECT_EQ(test::readFrames(m_film).size(), 120U);
}

TEST_F(WebcamFilmTest, ReusingFramesGivesTheSameFile)
{
    m_plan.timeRemap = {{0, 1, 1}};
    m_plan.style.motionBlur = true;
    m_plan.style.padding = 0.08;
    m_plan.camera = {{0, {64, 48}, 1}, {0.4, {30, 30}, 1.8}};
    m_plan.webcam = WebcamPlan{
        .file = "webcam.mov",
        .offset = 0.4,
        .corner = "topRight",
        .size = 0.4,
        .mirror = true,
        .enhance = true,
        .blurBackground = true};
    const std::string reused = film();
    EXPECT_TRUE(reused == film(OfflineExporter::Repeats::Compose));
    m_plan.style.motionBlur = false;
    EXPECT_FALSE(reused == film());
}

} // namespace
} // namespace zento
