#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/AudioReader.h"
#include "ZentoMedia/WavWriter.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
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

TEST(WavWriter, whatIsWrittenInStretchesIsReadAsOne)
{
    const test::TemporaryFolder folder;
    Channels wave(2);
    for (int i = 0; i < 3000; ++i) {
        wave[0].push_back(static_cast<float>(0.9 * std::sin(i * 0.05)));
        wave[1].push_back(static_cast<float>(i % 7 - 3)); // beyond full scale
    }
    WavWriter writer(folder / "a.wav", 22050, 2);
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
        ASSERT_NEAR(read[0][i], wave[0][i], 1.0 / 16384);
        ASSERT_NEAR(read[1][i], std::clamp(wave[1][i], -1.0F, 1.0F), 1.0 / 16384);
    }
}

TEST(WavWriter, saysWhichFileCannotBeWritten)
{
    try {
        const WavWriter writer("/nowhere/a.wav", 44100, 1);
        FAIL();
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "cannot write /nowhere/a.wav: No such file or directory");
    }
}

} // namespace
} // namespace zento
