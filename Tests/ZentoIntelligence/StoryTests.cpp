#include "LanguageServer.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/CopyGenerator.h"
#include "ZentoIntelligence/SemanticAnalyzer.h"

#include <gmock/gmock.h>

namespace zento {
namespace {

using test::HttpServer;
using test::modelAt;
using test::ollamaSaying;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

InputEvent clickOn(double t, const std::string& title)
{
    return {.t = t, .kind = EventKind::Click, .ax = AXInfo{"button", {}, title}};
}

InputEvent key(double t)
{
    return {.t = t, .kind = EventKind::KeyDown, .key = "a"};
}

InputEvent scroll(double t)
{
    return {.t = t, .kind = EventKind::Scroll, .scroll = Vec2{0, 10}};
}

TEST(SessionDigestTest, countsWhatWasDone)
{
    const std::vector<InputEvent> events = {
        key(1),
        key(1.5),
        key(2.05),
        key(2.7),
        scroll(3),
        scroll(3.1),
        clickOn(4, "Save"),
        clickOn(5, "save \n"),
        clickOn(6, "SAVE"),
        clickOn(7, "ÄNDERN"),
        clickOn(8, "ändern"),
        clickOn(9, "  "),
        {.t = 10, .kind = EventKind::Click}};
    const auto digest =
        SessionDigest::extract({.appName = "Notes", .duration = 12.4}, events, nullptr);
    EXPECT_EQ(digest.typingBurstCount, 2); // 0.55 s between two keys is no gap
    EXPECT_EQ(digest.scrollCount, 2);
    EXPECT_EQ(digest.clickCount, 7);
    EXPECT_THAT(digest.interactionTitles, ElementsAre("Save", "ÄNDERN"));
    EXPECT_EQ(digest.outputDuration, std::nullopt);
    EXPECT_THAT(digest.highlightTitles, IsEmpty());
    EXPECT_EQ(
        digest.promptSummary(),
        "App shown: Notes\n"
        "Recording: 12 seconds of screen activity\n"
        "Activity: 7 clicks, 2 typing bursts, some scrolling\n"
        "UI elements used, in order: Save, ÄNDERN");
}

TEST(SessionDigestTest, aThirteenthTitleIsDropped)
{
    std::vector<InputEvent> events;
    events.reserve(14);
    for (int i = 0; i < 14; ++i)
        events.push_back(clickOn(i, "Button " + std::to_string(i)));
    const auto digest = SessionDigest::extract({}, events, nullptr);
    EXPECT_THAT(digest.interactionTitles, SizeIs(12));
    EXPECT_EQ(digest.interactionTitles.back(), "Button 11");
    EXPECT_EQ(digest.clickCount, 14);
}

TEST(SessionDigestTest, aPlanTellsTheFilmsLengthAndItsZooms)
{
    EditPlan plan;
    plan.timeRemap = {{0, 4, 1}, {6, 10, 2}};
    plan.focusMoments = {{.title = "Send"}, {.title = {}}, {.title = "send"}, {.title = "Paid"}};
    const auto digest = SessionDigest::extract({.duration = 10}, std::vector{scroll(1)}, &plan);
    EXPECT_EQ(digest.outputDuration, 6);
    EXPECT_THAT(digest.highlightTitles, ElementsAre("Send", "Paid"));
    EXPECT_EQ(
        digest.promptSummary(),
        "Recording: 10 seconds of screen activity\n"
        "Edited video length: 6 seconds\n"
        "Activity: some scrolling\n"
        "Moments the edit zooms into: Send, Paid");
}

TEST(SessionDigestTest, withoutActivityThereIsNoLineOfIt)
{
    EXPECT_EQ(
        SessionDigest{.sourceDuration = 1.4}.promptSummary(),
        "Recording: 1 seconds of screen activity");
}

TEST(CopyGeneratorTest, templatesSayWhatTheDigestKnows)
{
    struct Case {
        const char* name;
        SessionDigest digest;
        VideoCopy copy;
    };
    const Case cases[] = {
        {"nothing",
         {.sourceDuration = 1.4},
         {"the app demo",
          "A quick look at the app in 1 seconds.",
          "Recorded a quick demo of the app — 1 seconds, no cuts by hand."}},
        {"zooms before clicks, at most three of them",
         {.appName = "Notes",
          .sourceDuration = 90,
          .outputDuration = 42.6,
          .interactionTitles = {"Open"},
          .highlightTitles = {"A", "B", "C", "D", "E"}},
         {"Notes: A in action",
          "A quick look at Notes — from A to done in 43 seconds.",
          "Recorded a quick demo of Notes — 43 seconds, no cuts by hand. Watch it walk through "
          "A, B, C."}},
        {"clicks without zooms",
         {.appName = "Notes", .sourceDuration = 9, .interactionTitles = {"Open"}},
         {"Notes: Open in action",
          "A quick look at Notes — from Open to done in 9 seconds.",
          "Recorded a quick demo of Notes — 9 seconds, no cuts by hand. Watch it walk through "
          "Open."}},
    };
    for (const auto& [name, digest, copy] : cases) {
        EXPECT_EQ(CopyGenerator::fallback(digest), copy) << name;
        EXPECT_EQ(CopyGenerator::copy(digest, {}), copy) << name; // there is no server
    }
}

TEST(CopyGeneratorTest, aModelsCopyIsTakenAsItIs)
{
    const HttpServer server(
        ollamaSaying(R"({"title":" T!","caption":"C\n","socialPost":"P","mood":"x"})"));
    const SessionDigest digest = {.appName = "Notes", .sourceDuration = 9};
    EXPECT_EQ(CopyGenerator::copy(digest, modelAt(server)), (VideoCopy{" T!", "C\n", "P", true}));
    const std::string asked = server.requests().back();
    EXPECT_THAT(asked, HasSubstr(R"(Digest of the recording:\nApp shown: Notes\nRecording: 9)"));
    EXPECT_THAT(asked, HasSubstr(R"(Write the title, caption, and social post for this video.\n)"));
    EXPECT_THAT(
        asked,
        HasSubstr(
            R"("format":{"type":"object","properties":{"title":{"type":"string","description":)"
            R"("Punchy title for the video, at most 8 words, no quotation marks, no emoji"})"));
    EXPECT_THAT(asked, HasSubstr(R"("required":["title","caption","socialPost"])"));
}

TEST(CopyGeneratorTest, anAnswerWithoutAllTextsIsNone)
{
    const SessionDigest digest = {.sourceDuration = 9};
    for (const char* answer :
         {R"({"title":"T","caption":"C"})",
          R"({"title":"T","caption":"C","socialPost":[]})",
          R"(["T","C","P"])",
          "Here is your copy: T",
          ""}) {
        const HttpServer server(ollamaSaying(answer));
        EXPECT_THROW(CopyGenerator::generate(digest, modelAt(server)), Error) << answer;
        EXPECT_FALSE(CopyGenerator::copy(digest, modelAt(server)).generatedByModel) << answer;
    }
}

TEST(SemanticAnalyzerTest, keyMomentsAreNamedClicksAndTheStartsOfTyping)
{
    const std::vector<InputEvent> events = {
        clickOn(1, " New "),
        key(2),
        key(2.3),
        clickOn(3, " \t"),
        key(3.2),
        scroll(4),
        {.t = 5, .kind = EventKind::Click}};
    EXPECT_THAT(
        SemanticAnalyzer::keyMoments(events),
        ElementsAre(
            SemanticAnalyzer::KeyMoment{1, "clicked \"New\""},
            SemanticAnalyzer::KeyMoment{2, "typed into a field"},
            SemanticAnalyzer::KeyMoment{3.2, "typed into a field"}));
    std::vector<InputEvent> many;
    many.reserve(30);
    for (int i = 0; i < 30; ++i)
        many.push_back(clickOn(i, "B" + std::to_string(i)));
    EXPECT_THAT(SemanticAnalyzer::keyMoments(many), SizeIs(24));
    EXPECT_EQ(SemanticAnalyzer::keyMoments(many).back().sourceTime, 23);
}

TEST(SemanticAnalyzerTest, theModelIsToldWhatWasDoneAndSaid)
{
    const std::vector<SemanticAnalyzer::KeyMoment> moments = {
        {3.04, "clicked \"New\""}, {65.26, "typed into a field"}};
    EXPECT_EQ(
        SemanticAnalyzer::storyPrompt(
            moments, {.appName = "Notes"}, std::vector<TranscriptSegment>{{0, 1, ""}}),
        "App: Notes\nActions, in order:\n0. [0:03.0] clicked \"New\"\n"
        "1. [1:05.3] typed into a field");
    EXPECT_EQ(
        SemanticAnalyzer::storyPrompt(
            moments, {}, std::vector<TranscriptSegment>{{0, 1, ""}, {600, 602, "So"}}),
        "Actions, in order:\n0. [0:03.0] clicked \"New\"\n1. [1:05.3] typed into a field\n"
        "Narration:\n[10:00.0] \"So\"");
}

TEST(SemanticAnalyzerTest, anAnswerIsKeptAsFarAsItFits)
{
    using Chapters = std::vector<std::pair<int, std::string>>;
    const std::vector<SemanticAnalyzer::KeyMoment> moments = {
        {1, "a"}, {2, "b"}, {2, "c"}, {4, "d"}, {5, "e"}, {6, "f"}};
    struct Case {
        const char* name;
        int hero;
        Chapters chapters;
        SemanticNotes notes;
    };
    const Case cases[] = {
        {"as asked", 3, {{0, " Start "}, {3, "End"}}, {4, {{1, "Start"}, {4, "End"}}}},
        {"no hero before the first", -1, {{0, "Start"}}, {{}, {{1, "Start"}}}},
        {"no hero after the last", 6, {{0, "Start"}}, {{}, {{1, "Start"}}}},
        {"twice the same", 0, {{0, "A"}, {0, "B"}, {3, "C"}}, {1, {{1, "A"}, {4, "C"}}}},
        {"backwards", 0, {{0, "A"}, {5, "B"}, {3, "C"}}, {1, {{1, "A"}, {6, "B"}}}},
        {"at the same time", 0, {{1, "A"}, {2, "B"}}, {1, {{2, "A"}}}},
        {"out of range", 0, {{-7, "A"}, {99, "B"}, {1, "C"}}, {1, {{2, "C"}}}},
        {"blank, which counts for nothing", 0, {{5, " \n"}, {1, "A"}}, {1, {{2, "A"}}}},
    };
    for (const auto& [name, hero, chapters, notes] : cases)
        EXPECT_EQ(SemanticAnalyzer::notes(hero, chapters, moments), notes) << name;
}

class StoryTest : public testing::Test {
protected:
    StoryTest()
    {
        m_bundle.url = m_folder.path();
        m_bundle.events = {clickOn(1, "New"), key(2), clickOn(3, "Send")};
    }

    std::optional<SemanticNotes> notes(const HttpServer& server)
    {
        return SemanticAnalyzer::loadOrAnalyze(
            m_bundle, {}, [this, &server](const std::stop_token&) {
                ++m_searches;
                return modelAt(server);
            });
    }
    bool isKept() const { return std::filesystem::exists(m_bundle.semanticsURL()); }

    test::TemporaryFolder m_folder;
    SessionBundle m_bundle;
    int m_searches = 0;
    const HttpServer m_server{
        ollamaSaying(R"({"heroIndex":2,"chapters":[{"startIndex":0,"title":"Making it"}]})")};
    const SemanticNotes m_told = {3, {{1, "Making it"}}};
};

TEST_F(StoryTest, isToldOnceAndKept)
{
    writeFile(m_bundle.semanticsURL(), "{");
    EXPECT_EQ(notes(m_server), m_told);
    EXPECT_EQ(decodeSemanticNotes(readFile(m_bundle.semanticsURL())), m_told);
    m_bundle.events.clear();
    EXPECT_EQ(notes(m_server), m_told);
    EXPECT_EQ(m_searches, 1);
    EXPECT_THAT(
        m_server.requests().back(),
        HasSubstr(R"("items":{"type":"object","properties":{"startIndex":{"type":"integer")"));
}

TEST_F(StoryTest, twoMomentsAreNoStory)
{
    m_bundle.events.pop_back();
    EXPECT_EQ(notes(m_server), std::nullopt);
    EXPECT_EQ(m_searches, 0);
}

TEST_F(StoryTest, aModelThatFailsIsAskedAgain)
{
    for (const char* answer :
         {R"({"heroIndex":"2","chapters":[]})",
          R"({"heroIndex":2})",
          R"({"heroIndex":99999999999999,"chapters":[]})",
          R"({"heroIndex":0,"chapters":[{"startIndex":0.5,"title":"x"}]})",
          "[]"}) {
        const HttpServer erring(ollamaSaying(answer));
        EXPECT_EQ(notes(erring), std::nullopt) << answer;
        EXPECT_FALSE(isKept()) << answer;
    }
    const HttpServer none([](const auto& c) { c.send(test::notFound()); });
    EXPECT_EQ(notes(none), std::nullopt);
    EXPECT_EQ(notes(m_server), m_told);
}

} // namespace
} // namespace zento
