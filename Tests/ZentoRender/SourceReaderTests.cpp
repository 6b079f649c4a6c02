#include "TestSupport/NumberedMovie.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoRender/SourceReader.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zento {
namespace {

TEST(SourceReaderTest, GivesTheLastFrameThatIsDue)
{
    const test::TemporaryFolder folder;
    const auto movie = folder / "screen.mov";
    test::writeNumberedRecording(
        movie, {64, 48}, {{7, 0}, {8, 0.1}, {9, 0.5}, {10, 0.55}, {11, 2}});
    struct Request {
        const char* name;
        double t;
        int number;
    };
    const Request requests[] = {
        {"before the first", -3, 7},
        {"at the first", 0, 7},
        {"just before a frame", 0.0999, 7},
        {"at a frame but for a rounding error", std::nextafter(0.1, 0), 8},
        {"at a frame", 0.1, 8},
        {"again", 0.1, 8},
        {"between", 0.49, 8},
        {"over several", 1.9, 10},
        {"backwards: it stays", 0.2, 10},
        {"at the last", 2, 11},
        {"beyond the end", 50, 11},
        {"and again", 51, 11},
    };
    SourceReader reader(movie);
    EXPECT_EQ(reader.naturalSize(), (VideoSize{64, 48}));
    for (const Request& request : requests) {
        const auto frame = reader.frame(request.t);
        ASSERT_TRUE(frame) << request.name;
        EXPECT_EQ(test::numberOf(*frame), request.number) << request.name;
    }
}

TEST(SourceReaderTest, AMissingMovieIsAnErrorThatNamesIt)
{
    const test::TemporaryFolder folder;
    try {
        const SourceReader reader(folder / "screen.mov");
        FAIL() << "opened";
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find("screen.mov"), std::string::npos) << error.what();
    }
}

} // namespace
} // namespace zento
