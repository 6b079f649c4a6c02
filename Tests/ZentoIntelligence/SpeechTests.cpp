#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/CaptionSegments.h"
#include "ZentoIntelligence/EnergySegments.h"
#include "ZentoIntelligence/NarrationTranscriber.h"
#include "ZentoIntelligence/VoiceActivity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

namespace zento {
namespace {

using NarrationTranscriber::clamped;
using NarrationTranscriber::loadOrTranscribe;

/// Recorded speech that comes with the recogniser, at 16 kHz, with what is said in it.
const std::filesystem::path kSpoken =
    "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0870.wav";
constexpr const char* kSaid =
    "and mr john dashwood had then leisure to consider how much there might "
    "be prudently in his power to do for them";

std::vector<float> joined(std::initializer_list<std::vector<float>> parts)
{
    std::vector<float> all;
    for (const auto& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

std::vector<float> silence(double seconds)
{
    // Not quite: the tenth percentile of a real room is not zero.
    auto quiet = test::noise(3, static_cast<std::size_t>(seconds * kSpeechRate));
    for (float& sample : quiet)
        sample *= 0.002F;
    return quiet;
}

std::vector<float> voice(double seconds)
{
    return test::tone(220, kSpeechRate, static_cast<std::size_t>(seconds * kSpeechRate));
}

std::vector<SpeechStretch> loud(const std::vector<float>& sound, double offset = 0)
{
    std::vector<SpeechStretch> result;
    for (const TranscriptSegment& s : energySegments(sound, kSpeechRate, offset)) {
        EXPECT_EQ(s.text, "");
        result.push_back({s.start, s.end});
    }
    return result;
}

std::vector<std::string> wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// How many words have to change, come or go: Levenshtein's distance over words.
std::size_t wordErrors(const std::vector<std::string>& said, const std::vector<std::string>& heard)
{
    std::vector<std::size_t> row(heard.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = j;
    for (std::size_t i = 0; i < said.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < heard.size(); ++j) {
            const std::size_t changed = diagonal + (said[i] == heard[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

TEST(EnergySegmentsTest, pausesEndSegmentsAndCoughsAreNone)
{
    struct Case {
        const char* name;
        std::vector<float> sound;
        std::vector<SpeechStretch> expected;
    };
    const std::vector<Case> cases = {
        {"nothing", {}, {}},
        {"one sentence", joined({silence(1), voice(2), silence(1)}), {{1, 3}}},
        {"a short pause in it",
         joined({silence(1), voice(1), silence(0.4), voice(1), silence(1)}),
         {{1, 3.4}}},
        {"a long one",
         joined({silence(1), voice(1), silence(0.6), voice(1), silence(1)}),
         {{1, 2}, {2.6, 3.6}}},
        {"a cough", joined({silence(2), voice(0.2), silence(2)}), {}},
        {"to the end", joined({silence(2), voice(1)}), {{2, 3}}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto found = loud(c.sound, 1.5);
        ASSERT_EQ(found.size(), c.expected.size());
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(found[i].start, 1.5 + c.expected[i].start, 0.051);
            EXPECT_NEAR(found[i].end, 1.5 + c.expected[i].end, 0.051);
        }
    }
}

TEST(EnergySegmentsTest, aSteadyHumIsNoVoice)
{
    EXPECT_TRUE(loud(test::tone(50, kSpeechRate, 5 * kSpeechRate)).empty());
}

TEST(CaptionSegmentsTest, readLikeCaptions)
{
    std::vector<SpokenWord> words;
    double time = 0;
    const auto say = [&](const std::string& text, double pause) {
        for (const std::string& word : wordsOf(text)) {
            words.push_back({time, time + 0.3, word});
            time += 0.32;
        }
        time += pause;
    };
    say("now i open the settings", 0.6);
    say("and that is all there is to say about the first of them", 0.2);
    say("the second", 0);
    const auto segments = captionSegments(words, 2);
    ASSERT_EQ(segments.size(), 3U);
    EXPECT_EQ(segments[0].text, "Now I open the settings");
    EXPECT_NEAR(segments[0].start, 2, 1e-9);
    EXPECT_NEAR(segments[0].end, 2 + 4 * 0.32 + 0.3, 1e-9);
    EXPECT_EQ(segments[1].text, "And that is all there is to say about the first of them");
    EXPECT_EQ(segments[2].text, "The second");
    for (int i = 0; i < 100; ++i)
        say("everlasting", 0);
    for (const auto& segment : captionSegments(words, 0))
        EXPECT_LE(segment.text.size(), 84U);
}

TEST(NarrationTranscriberTest, segmentsStayWithinTheRecording)
{
    const std::vector<TranscriptSegment> segments = {
        {5, 6, "late"},
        {-1, 1, "early"},
        {9.9, 11, "cut to nothing"},
        {9, 12, "cut"},
        {3, 3.1, ""}};
    const std::vector<TranscriptSegment> expected = {
        {0, 1, "early"}, {5, 6, "late"}, {9, 10, "cut"}};
    EXPECT_EQ(clamped(segments, 10), expected);
}

class TranscriptTest : public ::testing::Test {
protected:
    TranscriptTest()
    {
        m_bundle.url = m_folder.path();
        m_bundle.meta.duration = 100;
        m_bundle.meta.narrationOffset = 1.5;
    }
    void narrate(const std::vector<float>& sound) const
    {
        test::writeWav(m_bundle.narrationURL(), kSpeechRate, {sound});
    }

    test::TemporaryFolder m_folder;
    SessionBundle m_bundle;
};

TEST_F(TranscriptTest, realSpeechIsFoundAndMostWordsOfItAreRight)
{
    const auto speech = test::readSound(kSpoken).at(0);
    const double length = static_cast<double>(speech.size()) / kSpeechRate;
    narrate(joined({silence(2), speech, silence(2), test::tone(900, kSpeechRate, kSpeechRate)}));
    const auto segments = loadOrTranscribe(m_bundle);
    ASSERT_FALSE(segments.empty());
    EXPECT_NEAR(segments.front().start, 1.5 + 2, 0.5);
    EXPECT_NEAR(segments.back().end, 1.5 + 2 + length, 0.6);
    std::string heard;
    for (const TranscriptSegment& segment : segments)
        heard += segment.text + ' ';
    for (char& c : heard)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const auto said = wordsOf(kSaid);
    EXPECT_LE(wordErrors(said, wordsOf(heard)), said.size() / 2) << heard;
    EXPECT_EQ(decodeTranscript(readFile(m_bundle.transcriptURL())), segments);
}

/// Hears a word wherever someone speaks.
class OneWord final : public SpeechEngine {
public:
    std::vector<SpokenWord> words(
        std::span<const float>,
        std::span<const SpeechStretch> stretches,
        const std::function<void(double)>&,
        const std::stop_token&) override
    {
        std::vector<SpokenWord> result;
        for (const SpeechStretch& stretch : stretches)
            result.push_back({stretch.start, stretch.end, "word"});
        return result;
    }
};

TEST_F(TranscriptTest, aVoiceIsHeardInWhicheverChannelItIsAndHoweverQuiet)
{
    const auto speech = joined({silence(1), test::readSound(kSpoken).at(0), silence(1)});
    const auto heardAt = [&](float gain, std::size_t channel, std::size_t channels) {
        test::Channels sound(channels, std::vector<float>(speech.size()));
        std::ranges::transform(
            speech, sound.at(channel).begin(), [gain](float sample) { return sample * gain; });
        test::writeWav(m_bundle.narrationURL(), kSpeechRate, sound);
        std::filesystem::remove(m_bundle.transcriptURL());
        return loadOrTranscribe(m_bundle, {}, [] { return std::make_unique<OneWord>(); });
    };
    const auto plain = heardAt(1, 0, 1);
    ASSERT_FALSE(plain.empty());
    EXPECT_EQ(plain.front().text, "Word");
    EXPECT_EQ(heardAt(1, 4, 6), plain) << "in one of six";
    const auto quiet = heardAt(0.001F, 1, 2);
    ASSERT_FALSE(quiet.empty());
    EXPECT_EQ(quiet.front().text, "Word") << "sixty decibels down";
}

TEST_F(TranscriptTest, withoutAnEngineTheLoudPartsAreProtected)
{
    narrate(joined({silence(1), test::readSound(kSpoken).at(0), silence(1)}));
    const auto broken = []() -> std::unique_ptr<SpeechEngine> {
        throw Error(ErrorCode::kNoSpeechModel, "none");
    };
    const auto segments = loadOrTranscribe(m_bundle, {}, broken);
    ASSERT_FALSE(segments.empty());
    for (const TranscriptSegment& segment : segments)
        EXPECT_EQ(segment.text, "");
}

TEST_F(TranscriptTest, whatIsThereIsReadAndSilenceIsHeardOnce)
{
    EXPECT_TRUE(loadOrTranscribe(m_bundle).empty());
    EXPECT_FALSE(std::filesystem::exists(m_bundle.transcriptURL()));

    narrate(silence(2));
    std::stop_source stop;
    stop.request_stop();
    loadOrTranscribe(m_bundle, stop.get_token());
    EXPECT_FALSE(std::filesystem::exists(m_bundle.transcriptURL()));
    EXPECT_TRUE(loadOrTranscribe(m_bundle).empty());
    EXPECT_TRUE(decodeTranscript(readFile(m_bundle.transcriptURL())).empty());

    const std::vector<TranscriptSegment> kept = {{1, 2, "Kept"}};
    writeFile(m_bundle.transcriptURL(), encodeTranscript(kept));
    writeFile(m_bundle.narrationURL(), "not a sound");
    EXPECT_EQ(loadOrTranscribe(m_bundle), kept);
    writeFile(m_bundle.transcriptURL(), "[{");
    EXPECT_TRUE(loadOrTranscribe(m_bundle).empty()); // neither is readable
}

TEST(VoiceActivityTest, neitherNoiseNorTonesAreSpeech)
{
    EXPECT_TRUE(speechStretches(test::noise(1, 3 * kSpeechRate)).empty());
    EXPECT_TRUE(speechStretches(test::tone(440, kSpeechRate, 3 * kSpeechRate)).empty());
    EXPECT_TRUE(speechStretches({}).empty());
}

} // namespace
} // namespace zento
