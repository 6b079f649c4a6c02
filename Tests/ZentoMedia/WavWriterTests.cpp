#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/AudioReader.h"
#include "ZentoMedia/WavRecovery.h"
#include "ZentoMedia/WavWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

namespace zento {
namespace {

using Channels = std::vector<std::vector<float>>;

Channels readBack(const std::filesystem::path& file)
{
    AudioReader reader(file);
    Channels channels(static_cast<std::size_t>(reader.channelCount()));
    while (const auto block = reader.next())
        for (std::size_t c = 0; c < channels.size(); ++c)
            channels[c].insert(channels[c].end(), (*block)[c].begin(), (*block)[c].end());
    return channels;
}

class WavWriterFormat : public testing::TestWithParam<WavSamples> {};

INSTANTIATE_TEST_SUITE_P(
    Samples,
    WavWriterFormat,
    testing::Values(WavSamples::Integer16, WavSamples::Float32),
    [](const auto& given) { return given.param == WavSamples::Float32 ? "floats" : "integers"; });

TEST_P(WavWriterFormat, whatIsWrittenInStretchesIsReadAsOne)
{
    const test::TemporaryFolder folder;
    const bool isFloat = GetParam() == WavSamples::Float32;
    Channels wave(2);
    for (int i = 0; i < 3000; ++i) {
        wave[0].push_back(static_cast<float>(0.9 * std::sin(i * 0.05)));
        wave[1].push_back(static_cast<float>(i % 7 - 3)); // beyond full scale
    }
    WavWriter writer(
        folder / "a.wav", {.sampleRate = 22050, .channelCount = 2, .samples = GetParam()});
    for (const auto& [from, count] : {std::pair{0U, 1000U}, {1000U, 1U}, {1001U, 1999U}}) {
        const std::array<std::span<const float>, 2> block = {
            std::span(wave[0]).subspan(from, count), std::span(wave[1]).subspan(from, count)};
        writer.append(block);
    }
    writer.finish();

    EXPECT_EQ(AudioReader(folder / "a.wav").sampleRate(), 22050);
    const Channels read = readBack(folder / "a.wav");
    ASSERT_EQ(read.size(), 2U);
    ASSERT_EQ(read[0].size(), wave[0].size());
    for (std::size_t i = 0; i < wave[0].size(); ++i) {
        ASSERT_NEAR(read[0][i], wave[0][i], isFloat ? 0 : 1.0 / 16384);
        const float kept = isFloat ? wave[1][i] : std::clamp(wave[1][i], -1.0F, 1.0F);
        ASSERT_NEAR(read[1][i], kept, isFloat ? 0 : 1.0 / 16384);
    }
}

TEST_P(WavWriterFormat, cutAnywhereItIsRecoveredUpToItsLastWholeFrame)
{
    const test::TemporaryFolder folder;
    const WavFormat format{.sampleRate = 8000, .channelCount = 2, .samples = GetParam()};
    Channels wave(2);
    for (int i = 0; i < 12000; ++i) {
        wave[0].push_back(static_cast<float>(i % 100) / 128);
        wave[1].push_back(static_cast<float>(i % 77) / 128);
    }
    const std::array<std::span<const float>, 2> block = {wave[0], wave[1]};
    WavWriter writer(folder / "a.wav", format);
    const std::size_t header = readFile(folder / "a.wav").size();
    writer.append(block);
    writer.append(block); // the header tells of one and a half seconds, of three
    const std::string file = readFile(folder / "a.wav");
    const std::size_t frame = (file.size() - header) / (2 * wave[0].size());
    for (const std::size_t cut :
         {file.size(), file.size() - 1, file.size() - frame, file.size() / 2, header + frame}) {
        SCOPED_TRACE(cut);
        writeFile(folder / "cut.wav", file.substr(0, cut));
        EXPECT_TRUE(finishWav(folder / "cut.wav"));
        const std::string finished = readFile(folder / "cut.wav");
        const Channels read = readBack(folder / "cut.wav");
        ASSERT_EQ(read.size(), 2U);
        ASSERT_EQ(read[1].size(), (cut - header) / frame);
        EXPECT_NEAR(read[1].back(), wave[1][(read[1].size() - 1) % 12000], 1e-4);
        EXPECT_EQ(finished.size(), header + read[1].size() * frame);
        EXPECT_TRUE(finishWav(folder / "cut.wav"));
        EXPECT_EQ(readFile(folder / "cut.wav"), finished);
    }
    for (const std::size_t cut : {header, header + frame - 1}) {
        writeFile(folder / "cut.wav", file.substr(0, cut));
        EXPECT_FALSE(finishWav(folder / "cut.wav")) << "there is no sound in " << cut << " bytes";
    }
    for (const std::string& alien : {std::string(), file.substr(0, header - 1), "x" + file}) {
        writeFile(folder / "cut.wav", alien);
        EXPECT_THROW(finishWav(folder / "cut.wav"), Error);
        EXPECT_EQ(readFile(folder / "cut.wav"), alien);
    }
}

TEST(WavWriter, aFileThatIsNotFinishedIsReadUpToItsLastSecond)
{
    const test::TemporaryFolder folder;
    constexpr int kRate = 8000;
    const std::vector<float> block(kRate / 10, 0.25F);
    const std::array<std::span<const float>, 1> channels = {block};
    WavWriter writer(folder / "a.wav", {.sampleRate = kRate});
    for (int tenth = 1; tenth <= 35; ++tenth) {
        writer.append(channels);
        const Channels read = readBack(folder / "a.wav");
        ASSERT_GT(read[0].size() + kRate, block.size() * static_cast<std::size_t>(tenth));
        EXPECT_TRUE(
            std::ranges::all_of(read[0], [](float s) { return std::abs(s - 0.25) < 1e-3; }));
    }
}

TEST(WavWriter, aFileBeyondFourGigabytesTellsItsWholeLength)
{
    const test::TemporaryFolder folder;
    const WavFormat format{.sampleRate = 48000, .channelCount = 2, .samples = WavSamples::Float32};
    constexpr std::uint64_t kFrames = 650'000'000; // 3 h 45 min; 5.2 GB, all of it a hole
    const std::string header = wavHeader(format, kFrames * 8);
    EXPECT_EQ(header.size(), wavHeader(format, 0).size());
    writeFile(folder / "a.wav", header);
    std::filesystem::resize_file(folder / "a.wav", header.size() + kFrames * 8);
    AudioReader reader(folder / "a.wav");
    EXPECT_EQ(reader.channelCount(), 2);
    EXPECT_NEAR(static_cast<double>(reader.expectedLength()), double{kFrames}, 48000);
    EXPECT_TRUE(reader.next().has_value());

    // Cut while its header still told of less than that.
    writeFile(folder / "cut.wav", wavHeader(format, 480'000));
    std::filesystem::resize_file(folder / "cut.wav", header.size() + kFrames * 8 + 3);
    EXPECT_TRUE(finishWav(folder / "cut.wav"));
    EXPECT_EQ(std::filesystem::file_size(folder / "cut.wav"), header.size() + kFrames * 8);
    EXPECT_NEAR(
        static_cast<double>(AudioReader(folder / "cut.wav").expectedLength()),
        double{kFrames},
        48000);
}

TEST(WavWriter, saysWhichFileCannotBeWritten)
{
    try {
        const WavWriter writer("/nowhere/a.wav", {});
        FAIL();
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "cannot write /nowhere/a.wav: No such file or directory");
    }
}

} // namespace
} // namespace zento
