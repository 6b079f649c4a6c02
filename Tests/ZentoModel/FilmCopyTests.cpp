#include "EditorFixture.h"
#include "TestSupport/HttpServer.h"
#include "Zento/Model/FilmCopy.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/CopyGenerator.h"

#include <optional>

namespace zento {
namespace {

using test::httpAnswer;

class FilmCopyTest : public test::EditorTest {
protected:
    FilmCopyTest()
        : m_defaults(
              QString::fromStdString((m_folder / "defaults.ini").string()), QSettings::IniFormat)
        , m_copy(
              {.session = *m_session,
               .files = m_files,
               .language = m_language,
               .messages = m_messages,
               .defaults = m_defaults,
               .findModel = [this](const LanguageModelChoice& choice, const std::stop_token& stop) {
                   m_asked = choice;
                   return m_server ? SystemLanguageModel::find(
                                         {.host = m_server->url(), .model = {}}, stop)
                                   : SystemLanguageModel();
               }})
    {
    }

    void serve(const std::string& content)
    {
        m_server.emplace([content](const auto& connection) {
            const bool isQuestion = connection.request().starts_with("POST");
            connection.send(httpAnswer(
                "200 OK",
                "application/json",
                isQuestion ? R"({"message":{"content":")" + content + "\"}}"
                           : R"({"models":[{"name":"m"}]})"));
        });
    }

    VideoCopy kept(const std::filesystem::path& bundle) const
    {
        return decodeVideoCopy(readFile(bundle / "copy.json"));
    }

    test::FakeWorker m_language;
    Messages m_messages{m_clock};
    QSettings m_defaults;
    std::optional<test::HttpServer> m_server;
    LanguageModelChoice m_asked;
    FilmCopy m_copy;
};

TEST_F(FilmCopyTest, WordsAreWrittenFromTheFilmAndKeptOnRequest)
{
    const auto path = bundle("a.zento");
    open(path);
    EXPECT_FALSE(m_copy.isWritten());
    m_copy.write();
    EXPECT_EQ(m_copy.title(), "the app demo");
    EXPECT_TRUE(m_copy.origin().contains("templates"));
    EXPECT_FALSE(m_copy.isKept());
    EXPECT_FALSE(std::filesystem::exists(path / "copy.json"));

    m_copy.setPost("Look at this");
    m_copy.keep();
    EXPECT_TRUE(m_copy.isKept());
    EXPECT_EQ(kept(path).socialPost, "Look at this");
    m_copy.setPost("Look at that");
    EXPECT_FALSE(m_copy.isKept());

    open(bundle("b.zento"));
    EXPECT_FALSE(m_copy.isWritten());
    open(path);
    EXPECT_EQ(m_copy.post(), "Look at this");
    EXPECT_TRUE(m_copy.isKept());
}

TEST_F(FilmCopyTest, TheModelOfTheUsersChoiceWrites)
{
    serve(R"({\"title\":\"T\",\"caption\":\"C\",\"socialPost\":\"P\"})");
    m_defaults.setValue("languageServer", " box:8080 ");
    m_defaults.setValue("languageModel", "large");
    open(bundle("a.zento"));
    m_copy.write();
    EXPECT_EQ(m_asked, (LanguageModelChoice{"box:8080", "large"}));
    EXPECT_EQ(m_copy.title(), "T");
    EXPECT_TRUE(m_copy.origin().contains("model"));
}

TEST_F(FilmCopyTest, WordsOfARecordingThatWasLeftNeverLand)
{
    open(bundle("a.zento"));
    m_language.isHeld = true;
    m_copy.write();
    EXPECT_TRUE(m_copy.isWriting());
    EXPECT_FALSE(m_copy.canWrite());
    open(bundle("b.zento"));
    m_language.release();
    EXPECT_FALSE(m_copy.isWritten());
    EXPECT_TRUE(m_copy.canWrite());
}

TEST_F(FilmCopyTest, AKeptTitleMakesAFilmWithItsCardStale)
{
    open(bundle("a.zento"));
    m_copy.write();
    m_copy.keep();
    EXPECT_FALSE(m_session->isRenderStale()); // no card shows it
    m_settings.setProperty("titleCard", true);
    settle();
    m_session->rendered(m_session->version());
    m_copy.setTitle("Another");
    m_copy.keep();
    EXPECT_TRUE(m_session->isRenderStale());
}

TEST_F(FilmCopyTest, WhatCannotBeKeptIsTold)
{
    const auto path = bundle("a.zento");
    open(path);
    m_copy.write();
    std::filesystem::remove_all(path);
    m_copy.keep();
    EXPECT_FALSE(m_copy.isKept());
    EXPECT_FALSE(m_messages.errorMessage().isEmpty());
}

class AnalysisTest : public test::EditorTest {
protected:
    AnalysisTest()
    {
        auto withAnalysers = ports();
        withAnalysers.analysers = {
            .findRegions = [this](const auto&, const auto&) { return m_hints; },
            .transcribe =
                [this](const auto&, const auto&) {
                    m_calls += "heard ";
                    return m_said;
                },
            .tellStory =
                [this](const auto&, const std::vector<TranscriptSegment>& said, const auto&) {
                    m_calls += "told after " + std::to_string(said.size()) + " ";
                    return m_story;
                }};
        m_session.emplace(std::move(withAnalysers));
    }

    std::vector<FramingHint> m_hints;
    std::vector<TranscriptSegment> m_said;
    std::optional<SemanticNotes> m_story;
    std::string m_calls;
};

TEST_F(AnalysisTest, TheStoryFollowsWhatIsSaid)
{
    const auto path = bundle("a.zento");
    writeFile(path / "narration.wav", "");
    m_said = {{3, 5, "hello"}, {6, 8, ""}};
    m_story = SemanticNotes{.heroSourceTime = 9, .chapters = {{3, "One"}, {33, "Two"}}};
    open(path);
    settle();
    EXPECT_EQ(m_calls, "heard told after 2 ");
    EXPECT_EQ(m_session->transcript(), m_said);
    ASSERT_TRUE(plan().chapters);
    EXPECT_EQ(plan().chapters->size(), 2U);
    EXPECT_FALSE(m_session->isRenderStale());
}

TEST_F(AnalysisTest, ASilentRecordingIsToldAtOnceAndAnUnheardOneAfterTheAttempt)
{
    open(bundle("silent.zento"));
    const auto unheard = bundle("unheard.zento");
    writeFile(unheard / "narration.wav", "");
    open(unheard);
    EXPECT_EQ(m_calls, "told after 0 heard told after 0 ");
}

TEST_F(AnalysisTest, WhatIsInTheBundleIsNotSoughtAgain)
{
    const auto path = bundle("a.zento");
    writeFile(path / "narration.wav", "");
    writeFile(path / "transcript.json", R"([{"start":1,"end":2,"text":"x"}])");
    writeFile(path / "semantics.json", R"({"chapters":[]})");
    open(path);
    EXPECT_EQ(m_calls, "");
}

TEST_F(AnalysisTest, ListeningAgainReplacesWhatWasHeard)
{
    const auto path = bundle("a.zento");
    writeFile(path / "narration.wav", "");
    writeFile(path / "transcript.json", R"([{"start":1,"end":2,"text":"x"}])");
    open(path);
    EXPECT_TRUE(m_session->canTranscribe());
    m_calls.clear();
    m_said = {{1, 2, "better"}};
    m_analyses.isHeld = true;
    m_session->retranscribe();
    EXPECT_TRUE(m_session->isTranscribing());
    EXPECT_FALSE(m_session->canTranscribe());
    EXPECT_FALSE(std::filesystem::exists(path / "transcript.json"));
    m_analyses.release();
    EXPECT_EQ(m_session->transcript(), m_said);
    EXPECT_TRUE(m_session->canTranscribe());
    EXPECT_TRUE(m_session->isRenderStale());
    EXPECT_EQ(m_calls, "heard told after 1 ");
}

TEST_F(AnalysisTest, RegionsAroundClicksJoinThePlan)
{
    open(bundle("a.zento"));
    settle();
    const EditPlan before = plan();
    for (double t = 3; t < 60; t += 6)
        m_hints.push_back({t, {t * 20, 200, 420, 300}});
    open({});
    open(m_folder / "a.zento");
    settle();
    EXPECT_NE(plan(), before);
}

TEST(LanguageSettingsTest, SaysWhatWasFoundAndWhereWordsGo)
{
    const test::TemporaryFolder folder;
    QSettings defaults(QString::fromStdString((folder / "d.ini").string()), QSettings::IniFormat);
    test::FakeWorker worker;
    int looks = 0;
    LanguageSettings settings(
        {.worker = worker, .defaults = defaults, .findModel = [&looks](const auto&, const auto&) {
             ++looks;
             return SystemLanguageModel();
         }});
    EXPECT_EQ(settings.status(), "");
    worker.isHeld = true;
    settings.refresh();
    settings.refresh(); // replaces the first
    EXPECT_TRUE(settings.isLooking());
    worker.release();
    EXPECT_FALSE(settings.isLooking());
    EXPECT_FALSE(settings.isReady());
    EXPECT_TRUE(settings.status().contains("templates"));
    worker.isHeld = false;
    for (const char* near : {"", "localhost:1234", "http://127.0.0.1:8080/v1", "[::1]:80"}) {
        settings.setHost(near);
        EXPECT_EQ(settings.privacy(), "Nothing leaves this computer.") << near;
    }
    for (const char* far : {"box:8080", "https://models.example.org", "127.example.org"}) {
        settings.setHost(far);
        EXPECT_TRUE(settings.privacy().contains(far)) << far;
    }
    EXPECT_GE(looks, 8);
}

} // namespace
} // namespace zento
