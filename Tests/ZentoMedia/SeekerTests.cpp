#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Random.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/VideoDecoder.h"
#include "ZentoMedia/VideoSeeker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>

namespace zento {
namespace {

/// What a reader that only goes forwards would show: the last picture that is due.
int dueNumber(const std::vector<test::NumberedFrame>& frames, double t)
{
    int number = frames.front().number;
    for (const test::NumberedFrame& frame : frames)
        if (frame.time <= t + 2e-6)
            number = frame.number;
    return number;
}

TEST(VideoSeekerTest, GivesTheSamePictureInAnyOrderAsForwards)
{
    const test::TemporaryFolder folder;
    struct Case {
        const char* name;
        std::filesystem::path movie;
        bool standsAlone;
    };
    const Case cases[] = {
        {"a recording at times of its own", folder / "screen.mov", true},
        {"a film, pictures between whole ones and reordered", folder / "film.mp4", false}};
    std::vector<test::NumberedFrame> recorded;
    test::Random random(7);
    for (double t = 0; recorded.size() < 90; t += random.pick(std::array{1 / 60.0, 0.21, 1.0}))
        recorded.push_back({static_cast<int>(recorded.size()) + 40, t});
    test::writeNumberedRecording(cases[0].movie, {64, 48}, recorded);
    test::writeNumberedFilm(
        cases[1].movie,
        {.width = 64, .height = 48, .fps = 30, .bitRate = 400'000},
        test::countedNumbers(0, 300));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto frames = test::readNumbers(c.movie);
        VideoSeeker seeker(c.movie);
        EXPECT_EQ(seeker.naturalSize(), (VideoSize{64, 48}));
        EXPECT_EQ(seeker.span().has_value(), c.standsAlone);
        std::vector<double> times = {-1, 0, frames.back().time, frames.back().time + 9, 0.001};
        for (int i = 0; i < 60; ++i)
            times.push_back(random.uniform(0, frames.back().time));
        for (double t = 1; t < 1.4; t += 1 / 60.0) // as playing goes
            times.push_back(t);
        for (const double t : times) {
            const auto frame = seeker.frame(t);
            ASSERT_TRUE(frame) << t;
            EXPECT_EQ(test::numberOf(*frame), dueNumber(frames, t)) << t;
        }
    }
}

TEST(VideoSeekerTest, APictureNearbyIsTheWholeOneBeforeAndHarmsNoExactOne)
{
    const test::TemporaryFolder folder;
    const auto movie = folder / "film.mp4";
    test::writeNumberedFilm(
        movie,
        {.width = 64, .height = 48, .fps = 30, .bitRate = 400'000},
        test::countedNumbers(0, 600));
    const auto frames = test::readNumbers(movie);
    VideoSeeker seeker(movie);
    test::Random random(9);
    for (int i = 0; i < 40; ++i) {
        const double t = random.uniform(0, 20);
        const auto near = seeker.frame(t, VideoSeeker::Accuracy::Nearby);
        ASSERT_TRUE(near);
        EXPECT_LE(near->time(), t + 0.31);
        EXPECT_EQ(test::numberOf(*seeker.frame(t)), dueNumber(frames, t)) << t;
        EXPECT_EQ(test::numberOf(*seeker.frame(t + 0.1)), dueNumber(frames, t + 0.1)) << t;
    }
}

TEST(VideoSeekerTest, HasTheSamplesOfTheDecoder)
{
    const test::TemporaryFolder folder;
    const auto movie = folder / "screen.mov";
    test::writeNumberedRecording(movie, {64, 48}, test::countedFrames(5, 20, 60));
    const auto decoded = test::readFrames(movie);
    VideoSeeker seeker(movie);
    for (std::size_t i = decoded.size(); i-- > 0;) {
        const auto frame = seeker.frame(decoded[i].time());
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->time(), decoded[i].time());
        const auto& a = frame->planes10();
        const auto& b = decoded[i].planes10();
        for (int y = 0; y < a.cb.height; ++y)
            EXPECT_TRUE(std::equal(a.cb.row(y), a.cb.row(y) + a.cb.width, b.cb.row(y))) << i;
    }
    EXPECT_EQ(seeker.frame(0.1)->identity(), seeker.frame(0.1)->identity());
    EXPECT_NE(seeker.frame(0.1)->identity(), seeker.frame(0.2)->identity());
}

TEST(VideoSeekerTest, ATornMovieGivesWhatIsThere)
{
    const test::TemporaryFolder folder;
    const auto movie = folder / "screen.mov";
    test::writeNumberedRecording(movie, {64, 48}, test::countedFrames(0, 60, 60));
    std::filesystem::resize_file(movie, std::filesystem::file_size(movie) / 2);
    int readable = 0;
    try {
        VideoSeeker seeker(movie);
        for (const double t : {0.9, 0.0, 0.5})
            readable += seeker.frame(t) ? 1 : 0;
        EXPECT_LT(readable, 3);
    } catch (const Error& error) { // its index was behind the tear
        EXPECT_NE(std::string(error.what()).find(movie.string()), std::string::npos);
    }
    EXPECT_THROW(VideoSeeker(folder / "nothing.mov"), Error);
}

} // namespace
} // namespace zento
