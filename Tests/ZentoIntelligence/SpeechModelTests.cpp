#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "TinySpeechModel.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/SpeechEngine.h"
#include "ZentoIntelligence/SpeechModelFile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <typeinfo>

namespace zento {
namespace {

using ::testing::HasSubstr;

const std::string& model()
{
    static const std::string kModel = test::tinySpeechModel();
    return kModel;
}

/// The sentence it is refused with; empty if it is not.
std::string refusal(const std::filesystem::path& file)
{
    try {
        requireSpeechModel(file);
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kNoSpeechModel);
        EXPECT_THAT(error.what(), HasSubstr(file.string()));
        return error.what();
    }
    return "";
}

TEST(SpeechModelFile, aWholeModelIsTakenAndNothingElse)
{
    const test::TemporaryFolder folder;
    const std::filesystem::path file = folder / "model.bin";
    std::string widened = model();
    widened[12] = '\x7f'; // a layer of two thousand million
    widened[15] = '\x7f';
    const std::vector<std::pair<const char*, std::string>> bad = {
        {"nothing", ""},
        {"a web page", "<!doctype html><title>Not found</title>"},
        {"another format", "GGUF" + model().substr(4)},
        {"impossible sizes", widened},
        {"the header alone", model().substr(0, 48)},
        {"within the words", model().substr(0, 200'000)},
        {"without a table", model().substr(0, model().find("encoder.positional_embedding") - 20)},
        {"all but its last byte", model().substr(0, model().size() - 1)},
        {"half of it", model().substr(0, model().size() / 2)},
        {"more than itself", model() + "x"},
    };
    for (const auto& [name, bytes] : bad) {
        writeFile(file, bytes);
        EXPECT_NE(refusal(file), "") << name;
        EXPECT_THROW(makeWhisper(file), Error) << name;
    }
    EXPECT_NE(refusal(folder / "missing.bin"), "");
    EXPECT_NE(refusal(folder.path()), "");
    writeFile(file, model());
    EXPECT_EQ(refusal(file), "");
}

class WhisperTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (!canUseWhisper())
            GTEST_SKIP() << "not in this build, or not on this processor";
        writeFile(m_file, model());
    }

    test::TemporaryFolder m_folder;
    std::filesystem::path m_file = m_folder / "model.bin";
    std::vector<float> m_sound = test::noise(2, std::size_t{4} * kSpeechRate);
    std::vector<SpeechStretch> m_stretches = {{0.5, 1.5}, {2, 3}};
};

TEST_F(WhisperTest, hearsWithinTheStretches)
{
    std::vector<double> progress;
    const auto words = makeWhisper(m_file)->words(
        m_sound, m_stretches, [&](double share) { progress.push_back(share); }, {});
    for (const SpokenWord& word : words) {
        EXPECT_NE(word.text, "");
        EXPECT_LE(word.start, word.end);
        EXPECT_GE(word.start, 0.5);
        EXPECT_LE(word.end, 3);
    }
    ASSERT_FALSE(progress.empty());
    EXPECT_TRUE(std::ranges::is_sorted(progress));
    EXPECT_GT(progress.front(), 0);
    EXPECT_LE(progress.back(), 1.0 + 1e-9);
}

TEST_F(WhisperTest, aModelThatLacksAWordItNeedsIsAnError)
{
    std::string lacking = model();
    lacking[lacking.find(std::string("\1\0\0\0 \6", 6)) + 4] = 'x';
    writeFile(m_file, lacking);
    EXPECT_THROW(makeWhisper(m_file)->words(m_sound, m_stretches, {}, {}), Error);
}

TEST_F(WhisperTest, isStoppedWhileItListens)
{
    const auto engine = makeWhisper(m_file);
    std::stop_source stop;
    std::vector<float> sound;
    std::vector<SpeechStretch> passages; // too far apart to be heard in one go
    for (int i = 0; i < 5; ++i) {
        passages.push_back({i * 32.0, i * 32.0 + 1});
        for (int seconds = 0; seconds < 32; seconds += 4)
            sound.insert(sound.end(), m_sound.begin(), m_sound.end());
    }
    int reports = 0;
    engine->words(
        sound,
        passages,
        [&](double) {
            ++reports;
            stop.request_stop();
        },
        stop.get_token());
    EXPECT_LE(reports, 2); // of five and more
}

TEST_F(WhisperTest, theUsersModelIsPreferredWhileItIsWhole)
{
    const std::filesystem::path link = m_folder / "speech.bin";
    const auto isBasic = [&link] {
        const auto engine = makeEngineFor(link);
        const auto basic = makeSphinx();
        const SpeechEngine& one = *engine;
        const SpeechEngine& other = *basic;
        return typeid(one) == typeid(other);
    };
    EXPECT_TRUE(isBasic());
    std::filesystem::create_symlink(m_file, link);
    EXPECT_FALSE(isBasic());
    writeFile(m_file, model().substr(0, 1'000'000));
    EXPECT_TRUE(isBasic());
    std::filesystem::remove(m_file);
    EXPECT_TRUE(isBasic());
}

} // namespace
} // namespace zento
