#include "TestSupport/DiskLimits.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/AacWriter.h"
#include "ZentoMedia/TrackJoin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <string>

namespace zento {
namespace {

using namespace test;
using testing::HasSubstr;

std::string bytesOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeSoundtrack(const std::filesystem::path& path, const std::vector<float>& sound)
{
    AacWriter writer(path, {});
    writer.append(sound, sound);
    writer.finish();
}

/// The duration a movie's header states, in seconds.
double statedDuration(const std::string& bytes)
{
    const std::size_t header = bytes.find("mvhd");
    const auto number = [&](std::size_t offset) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i)
            value = value << 8U | static_cast<std::uint8_t>(bytes.at(header + offset + i));
        return static_cast<double>(value);
    };
    return number(20) / number(16);
}

class Join : public testing::Test {
protected:
    void write(int frames, double fps, std::size_t samples)
    {
        writeNumberedFilm(
            m_video,
            {.width = 160, .height = 96, .fps = fps, .bitRate = 500'000},
            countedNumbers(0, frames));
        m_sound = noise(1, samples);
        writeSoundtrack(m_audio, m_sound);
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_video = m_folder / "v.mp4";
    std::filesystem::path m_audio = m_folder / "a.m4a";
    std::filesystem::path m_film = m_folder / "f.mp4";
    std::vector<float> m_sound;
};

TEST_F(Join, keepsPicturesAndSoundInPlaceAndTheFilmAsLongAsItsPictures)
{
    struct Case {
        const char* name;
        int frames;
        double fps;
        std::size_t samples;
    };
    const Case cases[] = {
        {"equally long", 90, 60, 66150},
        {"sound goes on", 90, 60, 120000},
        {"sound ends before", 90, 60, 30000},
        {"another rate", 47, 24, 86000},
        {"pictures of one frame", 1, 30, 50000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        write(c.frames, c.fps, c.samples);
        joinTracks(m_video, m_audio, m_film);

        EXPECT_EQ(readNumbers(m_film), readNumbers(m_video));
        const auto left = readSound(m_film).front();
        const double film = c.frames / c.fps;
        const auto heard = std::min(c.samples, static_cast<std::size_t>(film * 44100));
        EXPECT_GE(left.size(), heard);
        EXPECT_LT(left.size(), heard + 1024) << "the last frame's padding, at most";
        for (const std::size_t place : {0U, 14000U, 25000U})
            if (place + 2000 < heard) {
                const auto part = std::span(m_sound).subspan(place, 2000);
                EXPECT_EQ(placeOf(part, left, place < 500 ? 0 : place - 500, place + 500), place);
            }
        EXPECT_NEAR(statedDuration(bytesOf(m_film)), film, 1.5 / 44100);
    }
}

TEST_F(Join, copiesTheTracksAsTheyAre)
{
    write(60, 60, 44100);
    joinTracks(m_video, m_audio, m_film);
    const std::string film = bytesOf(m_film);
    const std::string video = bytesOf(m_video);
    EXPECT_LT(film.find("moov"), film.find("mdat"));
    // The colours, the encoder's parameters and a stretch of its packets.
    for (const auto& [tag, length] : {std::pair{"colr", 15}, std::pair{"avcC", 30}}) {
        const auto part = video.substr(video.find(tag), static_cast<std::size_t>(length));
        EXPECT_NE(film.find(part), std::string::npos) << tag;
    }
    const auto packets = video.substr(video.find("mdat") + 40, 200);
    EXPECT_NE(film.find(packets), std::string::npos);
}

TEST_F(Join, tellsWhatIsMissingOrCannotBeWritten)
{
    write(10, 60, 10000);
    std::ofstream(m_folder / "text.mp4") << "neither";
    struct Case {
        const char* name;
        const char* video;
        const char* audio;
        const char* film;
        const char* domain;
        int code;
        const char* says;
    };
    const Case cases[] = {
        {"no pictures", "a.m4a", "a.m4a", "f.mp4", "Zento", 13, "no video track in "},
        {"no sound", "v.mp4", "v.mp4", "f.mp4", "Zento", 13, "no audio track in "},
        {"no video file", "gone.mp4", "a.m4a", "f.mp4", "errno", ENOENT, "gone.mp4"},
        {"no audio file", "v.mp4", "gone.m4a", "f.mp4", "errno", ENOENT, "gone.m4a"},
        {"no movie", "text.mp4", "a.m4a", "f.mp4", "Zento", 2, "text.mp4"},
        {"no folder", "v.mp4", "a.m4a", "none/f.mp4", "errno", ENOENT, "none/f.mp4"},
        {"full disk", "v.mp4", "a.m4a", "/dev/full", "errno", ENOSPC, "/dev/full"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        try {
            joinTracks(m_folder / c.video, m_folder / c.audio, m_folder / c.film);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.domain(), c.domain) << error.what();
            EXPECT_EQ(error.code(), c.code);
            EXPECT_THAT(error.what(), HasSubstr(c.says));
        }
    }
    // Pictures an MP4 file has no name for.
    ASSERT_TRUE(runFfmpeg(
        "-f lavfi -i color=c=red:s=64x64:d=1 -c:v ffv1 " + (m_folder / "odd.mkv").string()));
    try {
        joinTracks(m_folder / "odd.mkv", m_audio, m_film);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kJoinFailed) << error.what();
        EXPECT_THAT(error.what(), HasSubstr(m_film.string()));
    }
}

TEST_F(Join, endsSoonAfterItIsStopped)
{
    write(90, 60, 66150);
    std::stop_source stop;
    int calls = 0;
    try {
        joinTracks(m_video, m_audio, m_film, stop.get_token(), [&](double share) {
            EXPECT_GE(share, 0);
            EXPECT_LE(share, 1);
            if (++calls == 5)
                stop.request_stop();
        });
        FAIL() << "not cancelled";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kCancelled);
    }
    EXPECT_EQ(calls, 5);
}

} // namespace
} // namespace zento
