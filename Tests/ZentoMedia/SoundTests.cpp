#include "TestSupport/DiskLimits.h"
#include "TestSupport/NumberedMovie.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/AacWriter.h"
#include "ZentoMedia/AudioReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <fstream>
#include <string>

namespace zento {
namespace {

using namespace test;
using testing::HasSubstr;

Channels readStereo(const std::filesystem::path& path, int rate)
{
    AudioReader reader(path, ChannelMix::Stereo, rate);
    Channels sides(2);
    while (const auto block = reader.next())
        for (std::size_t i = 0; i < 2; ++i)
            sides[i].insert(sides[i].end(), (*block)[i].begin(), (*block)[i].end());
    return sides;
}

void writeAac(const std::filesystem::path& path, const Channels& sides)
{
    AacWriter writer(path, {});
    // In pieces that meet no frame of the encoder.
    for (std::size_t done = 0; done < sides[0].size(); done += 777) {
        const std::size_t count = std::min<std::size_t>(777, sides[0].size() - done);
        writer.append(
            std::span(sides[0]).subspan(done, count), std::span(sides[1]).subspan(done, count));
    }
    writer.finish();
}

/// A file's bytes in pieces of some size, as a network brings them.
ByteSource bytesOf(const std::filesystem::path& path, std::size_t piece)
{
    return [all = readFile(path), at = std::size_t(0), piece](std::span<char> into) mutable {
        const std::size_t count = std::min({piece, into.size(), all.size() - at});
        std::copy_n(all.data() + at, count, into.data());
        at += count;
        return count;
    };
}

TEST(AudioReader, readsBytesThatComeOneAfterTheOther)
{
    const TemporaryFolder folder;
    writeWav(folder / "a.wav", 44100, {noise(1, 60000), noise(2, 60000)});
    for (const std::string name : {"a.wav", "a.mp3", "a.ogg", "a.flac", "a.aac"}) {
        const std::string both = (folder / "a.wav").string() + " " + (folder / name).string();
        ASSERT_TRUE(name == "a.wav" || runFfmpeg("-i " + both));
        const Channels whole = readStereo(folder / name, 44100);
        AudioReader reader(bytesOf(folder / name, 777), name, ChannelMix::Stereo, 44100);
        Channels sides(2);
        while (const auto block = reader.next())
            for (std::size_t i = 0; i < 2; ++i)
                sides[i].insert(sides[i].end(), (*block)[i].begin(), (*block)[i].end());
        // A file that can be looked at from its end knows better how much to leave out there.
        ASSERT_GE(sides[0].size(), whole[0].size()) << name;
        EXPECT_LE(sides[0].size(), whole[0].size() + 4000) << name;
        sides[0].resize(whole[0].size());
        EXPECT_EQ(sides[0], whole[0]) << name;
    }
}

TEST(AudioReader, bytesThatFailSayWhyAtTheStartAndEndTheSoundLater)
{
    const TemporaryFolder folder;
    writeWav(folder / "a.wav", 44100, {noise(1, 200000)});
    const auto failing = [&](std::size_t after) {
        return [source = bytesOf(folder / "a.wav", 1000), after, sum = std::size_t(0)](
                   std::span<char> into) mutable {
            if (sum >= after)
                throw Error(ErrorCode::kNetworkFailed, "the line is dead");
            const std::size_t count = source(into);
            sum += count;
            return count;
        };
    };
    EXPECT_THAT(
        [&] { AudioReader(failing(0), "a"); },
        testing::ThrowsMessage<Error>(HasSubstr("the line is dead")));
    AudioReader reader(failing(300'000), "a");
    std::size_t length = 0;
    while (const auto block = reader.next())
        length += block->front().size();
    EXPECT_GT(length, 60'000U);
    EXPECT_LT(length, 80'000U);
    EXPECT_THROW(AudioReader([](auto) { return std::size_t(0); }, "nothing"), Error);
}

TEST(AudioReader, givesAFileAsItIsStored)
{
    for (const std::size_t channelCount : {1U, 2U, 3U, 8U, 11U}) {
        SCOPED_TRACE(channelCount);
        const TemporaryFolder folder;
        Channels channels;
        for (std::size_t i = 0; i < channelCount; ++i)
            channels.push_back(noise(i, 10000));
        writeWav(folder / "a.wav", 192000, channels);
        EXPECT_EQ(readSound(folder / "a.wav"), channels);
        AudioReader reader(folder / "a.wav");
        EXPECT_EQ(reader.sampleRate(), 192000);
        EXPECT_NEAR(static_cast<double>(reader.expectedLength()), 10000, 1);
    }
}

TEST(AudioReader, stereoTakesOneChannelInFullAndRaisesNoPeak)
{
    const TemporaryFolder folder;
    const auto sound = noise(1, 5000);
    const std::vector<float> silence(5000, 0);
    writeWav(folder / "mono.wav", 44100, {sound});
    EXPECT_EQ(readStereo(folder / "mono.wav", 44100), (Channels{sound, sound}));
    writeWav(folder / "stereo.wav", 44100, {sound, silence});
    EXPECT_EQ(readStereo(folder / "stereo.wav", 44100), (Channels{sound, silence}));

    for (const std::size_t channelCount : {3U, 4U, 6U, 8U, 11U, 17U}) {
        SCOPED_TRACE(channelCount);
        // All at full scale at once: the loudest there can be.
        writeWav(folder / "many.wav", 44100, Channels(channelCount, std::vector<float>(5000, 1)));
        for (const auto& side : readStereo(folder / "many.wav", 44100)) {
            ASSERT_EQ(side.size(), 5000U);
            EXPECT_LE(*std::ranges::max_element(side), 1 + 1e-5F);
            EXPECT_GT(*std::ranges::min_element(side), 0.5F);
        }
        // The first channel stands left wherever channels have places, and where they have none.
        Channels first(channelCount, std::vector<float>(5000, 0));
        first.front() = sound;
        writeWav(folder / "first.wav", 44100, first);
        const auto sides = readStereo(folder / "first.wav", 44100);
        EXPECT_GT(levelOf(sides[0], 0, 5000), 0.02);
        EXPECT_EQ(levelOf(sides[1], 0, 5000), 0);
    }
}

TEST(AudioReader, resamplingKeepsPlaceLengthAndLevel)
{
    for (const int rate : {8000, 22050, 44100, 48000, 96000, 192000}) {
        SCOPED_TRACE(rate);
        const TemporaryFolder folder;
        const auto count = static_cast<std::size_t>(rate) * 2;
        writeWav(folder / "a.wav", rate, {tone(441, rate, count)});
        const auto left = readStereo(folder / "a.wav", 44100).front();
        const auto wanted = tone(441, 44100, 88200);
        EXPECT_NEAR(static_cast<double>(left.size()), 88200, 2);
        double worst = 0;
        for (std::size_t i = 500; i < 87500; ++i)
            worst = std::max(worst, std::abs(static_cast<double>(left[i] - wanted[i])));
        EXPECT_LT(worst, 0.002) << "a shift of one sample would be 0.03";
    }
}

TEST(AudioReader, readsEveryUsualFormatInPlace)
{
    const TemporaryFolder folder;
    const auto wav = (folder / "a.wav").string();
    // A burst of noise in silence, so that its place can be told.
    auto sound = std::vector<float>(88200, 0);
    std::ranges::copy(noise(3, 2000), sound.begin() + 30000);
    writeWav(wav, 44100, {sound, sound});
    struct Case {
        const char* name;
        const char* options;
        double rate;
    };
    const Case cases[] = {
        {"a.mp3", "-b:a 256k", 44100},
        {"a.flac", "", 44100},
        {"a.ogg", "-c:a libvorbis", 44100},
        {"a.opus", "-c:a libopus -b:a 256k", 48000},
        {"a.m4a", "-c:a aac -b:a 256k", 44100},
        {"a.aiff", "", 44100},
        {"a.mkv", "-f lavfi -i color=c=red:s=64x64:d=2 -c:a pcm_s24le", 44100},
        {"a.mov", "-f lavfi -i color=c=red:s=64x64:d=2 -c:a alac", 44100},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto file = folder / c.name;
        ASSERT_TRUE(runFfmpeg("-i " + wav + " " + c.options + " " + file.string()));
        EXPECT_EQ(AudioReader(file).sampleRate(), c.rate);
        const auto left = readStereo(file, 44100).front();
        EXPECT_EQ(placeOf(std::span(sound).subspan(30000, 2000), left, 28000, 32000), 30000U);
        EXPECT_NEAR(levelOf(left, 30000, 32000), levelOf(sound, 30000, 32000), 0.03);
        EXPECT_NEAR(static_cast<double>(left.size()), 88200, 1200) << "padding of the last frame";
    }
}

TEST(AudioReader, tornSoundPlaysUpToTheTear)
{
    const TemporaryFolder folder;
    const auto sound = noise(4, 88200);
    writeWav(folder / "a.wav", 44100, {sound});
    std::filesystem::resize_file(folder / "a.wav", 44 + 30001 * 4 + 2);
    const auto read = readSound(folder / "a.wav").front();
    EXPECT_EQ(read, std::vector<float>(sound.begin(), sound.begin() + 30001));

    const auto longer = noise(5, 882000);
    writeWav(folder / "b.wav", 44100, {longer});
    for (const char* name : {"b.mp3", "b.flac", "b.ogg"}) {
        SCOPED_TRACE(name);
        const auto file = folder / name;
        ASSERT_TRUE(runFfmpeg("-i " + (folder / "b.wav").string() + " " + file.string()));
        std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
        const auto left = readSound(file).front();
        EXPECT_NEAR(static_cast<double>(left.size()), 441000, 88200);
        EXPECT_EQ(placeOf(std::span(longer).subspan(90000, 1000), left, 89000, 91000), 90000U);
    }
}

TEST(AudioReader, anEmptyTrackIsReadAsSuch)
{
    const TemporaryFolder folder;
    writeWav(folder / "a.wav", 48000, {{}, {}});
    AudioReader reader(folder / "a.wav");
    EXPECT_EQ(reader.sampleRate(), 48000);
    EXPECT_FALSE(reader.next());
    EXPECT_FALSE(reader.next());
}

TEST(AudioReader, tellsWhatCannotBeRead)
{
    const TemporaryFolder folder;
    std::ofstream(folder / "nothing.wav").flush();
    std::ofstream(folder / "text.mp3") << "not a song";
    {
        std::ofstream text(folder / "long.mp3");
        for (int i = 0; i < 5000; ++i)
            text << "line " << i << " of a text that goes on and on without a note in it\n";
    }
    writeNumberedFilm(
        folder / "silent.mp4", {.width = 64, .height = 64, .bitRate = 100000}, {1, 2});
    struct Case {
        const char* file;
        const char* domain;
        int code;
    };
    const Case cases[] = {
        {"nothing.wav", "Zento", ErrorCode::kReadingFailed},
        {"text.mp3", "Zento", ErrorCode::kReadingFailed},
        {"long.mp3", "Zento", ErrorCode::kReadingFailed},
        {"silent.mp4", "Zento", ErrorCode::kReadingFailed},
        {"gone.wav", "errno", ENOENT},
        {"", "errno", EISDIR},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        try {
            const AudioReader reader(folder / c.file);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_THAT(error.what(), HasSubstr((folder / c.file).string()));
            EXPECT_EQ(error.domain(), c.domain) << error.what();
            EXPECT_EQ(error.code(), c.code) << error.what();
        }
    }
}

TEST(Aac, everySampleIsHeardAtItsTime)
{
    for (const std::size_t length : {1U, 1023U, 1024U, 1025U, 50000U}) {
        SCOPED_TRACE(length);
        const TemporaryFolder folder;
        Channels sides{noise(5, length), tone(300, 44100, length)};
        writeAac(folder / "a.m4a", sides);
        const auto read = readSound(folder / "a.m4a");
        ASSERT_EQ(read.size(), 2U);
        EXPECT_GE(read[0].size(), length);
        EXPECT_LT(read[0].size(), length + 1024) << "the last frame's padding, at most";
        if (length < 5000)
            continue;
        for (const std::size_t place : {0U, 20000U, 45000U}) {
            const auto part = std::span(sides[0]).subspan(place, 3000);
            EXPECT_EQ(placeOf(part, read[0], place < 1500 ? 0 : place - 1500, place + 1500), place);
        }
        EXPECT_NEAR(levelOf(read[1], 5000, 45000), levelOf(sides[1], 5000, 45000), 0.005);
    }
}

TEST(Aac, bitRateIsTheOneAskedFor)
{
    const TemporaryFolder folder;
    writeAac(folder / "a.m4a", {noise(6, 441000), noise(7, 441000)});
    const double rate = static_cast<double>(file_size(folder / "a.m4a")) * 8 / 10;
    EXPECT_NEAR(rate / 256000, 1, 0.1);
}

TEST(Aac, tellsWhatCannotBeWritten)
{
    struct Case {
        const char* name;
        std::string file; // in the folder unless absolute
        SoundFormat format;
        std::size_t length;
        const char* domain;
        int code;
    };
    const Case cases[] = {
        {"no folder", "none/a.m4a", {}, 5000, "errno", ENOENT},
        {"full disk", "/dev/full", {}, 5000, "errno", ENOSPC},
        {"a rate AAC does not know", "a.m4a", {.sampleRate = 44101}, 5000, "Zento", 3},
        {"no rate", "a.m4a", {.sampleRate = 0}, 5000, "Zento", 3},
        {"no samples", "a.m4a", {}, 0, "Zento", 7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TemporaryFolder folder;
        const auto path = folder / c.file;
        const auto samples = noise(8, c.length);
        try {
            AacWriter writer(path, c.format);
            writer.append(samples, samples);
            writer.finish();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Error& error) {
            EXPECT_EQ(error.domain(), c.domain);
            EXPECT_EQ(error.code(), c.code);
            EXPECT_THAT(error.what(), HasSubstr(path.string()));
        }
    }
}

} // namespace
} // namespace zento
