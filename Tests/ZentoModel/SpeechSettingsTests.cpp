#include "EditorFixture.h"
#include "TestSupport/HttpServer.h"
#include "Zento/Model/SpeechModelFetch.h"
#include "Zento/Model/SpeechSettings.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <QCryptographicHash>

#include <gmock/gmock.h>

#include <latch>
#include <thread>

namespace zento {
namespace {

using test::httpAnswer;
using test::HttpServer;
using ::testing::HasSubstr;

std::string sha1(const std::string& bytes)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(bytes), QCryptographicHash::Sha1)
        .toHex()
        .toStdString();
}

class SpeechModelFetchTest : public testing::Test {
protected:
    /// The code it fails with; 0 if it does not.
    int fetch(const HttpServer& server, const std::stop_token& stop = {})
    {
        try {
            fetchSpeechModel(
                m_offer, server.url(), m_file, [this](double p) { m_progress = p; }, stop);
        } catch (const Error& error) {
            return error.code();
        }
        return 0;
    }

    const std::string m_model = std::string(100'000, 'm') + "end";
    const std::string m_sum = sha1(m_model);
    const SpeechModelOffer m_offer{"small", "Small", 1, m_sum};
    test::TemporaryFolder m_folder;
    std::filesystem::path m_file = m_folder / "Models" / "speech.bin";
    std::filesystem::path m_part = m_folder / "Models" / "small.part";
    double m_progress = 0;
    const HttpServer m_whole{
        [this](const auto& c) { c.send(httpAnswer("200 OK", "x/y", m_model)); }};
    /// Sends what is asked for, but at most the half of it.
    const HttpServer m_torn{[this](const auto& c) {
        const std::size_t range = c.request().find("Range: bytes=");
        const std::size_t from =
            range == std::string::npos ? 0 : std::stoul(c.request().substr(range + 13));
        const std::string rest = m_model.substr(from);
        const std::size_t sent = rest.size() < 30'000 ? rest.size() : rest.size() / 2;
        c.send(
            (from > 0 ? "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes "
                            + std::to_string(from) + "-100002/100003\r\n"
                      : std::string("HTTP/1.1 200 OK\r\n"))
            + "Content-Length: " + std::to_string(rest.size()) + "\r\n\r\n" + rest.substr(0, sent));
    }};
};

TEST_F(SpeechModelFetchTest, aWholeModelTakesItsPlace)
{
    EXPECT_EQ(fetch(m_whole), 0);
    EXPECT_EQ(readFile(m_file), m_model);
    EXPECT_EQ(m_progress, 1);
    EXPECT_FALSE(std::filesystem::exists(m_part));
    EXPECT_THAT(m_whole.requests().front(), HasSubstr("GET /ggml-small.bin HTTP"));
}

TEST_F(SpeechModelFetchTest, aTornFetchGoesOnWhereItWas)
{
    EXPECT_EQ(fetch(m_torn), ErrorCode::kNetworkFailed);
    EXPECT_EQ(fetch(m_torn), ErrorCode::kNetworkFailed);
    EXPECT_FALSE(std::filesystem::exists(m_file));
    EXPECT_EQ(std::filesystem::file_size(m_part), 75'002U);
    EXPECT_EQ(fetch(m_torn), 0);
    EXPECT_EQ(readFile(m_file), m_model);
    EXPECT_THAT(m_torn.requests().back(), HasSubstr("Range: bytes=75002-"));
}

TEST_F(SpeechModelFetchTest, aWholePartNeedsOnlyItsName)
{
    makeFolder(m_part.parent_path());
    writeFile(m_part, m_model);
    const HttpServer server(
        [](const auto& c) { c.send(httpAnswer("416 Range Not Satisfiable", "text/plain", "")); });
    EXPECT_EQ(fetch(server), 0);
    EXPECT_EQ(readFile(m_file), m_model);
}

TEST_F(SpeechModelFetchTest, whatIsNotTheModelNeverTakesItsPlace)
{
    makeFolder(m_file.parent_path());
    writeFile(m_file, "the one before");
    struct Case {
        const char* name;
        std::string answer;
    };
    const std::vector<Case> cases = {
        {"a web page", httpAnswer("200 OK", "text/html", "<html>")},
        {"one byte off", httpAnswer("200 OK", "x/y", m_model.substr(1) + "e")},
        {"refused", httpAnswer("404 Not Found", "text/html", m_model)},
        {"nothing", httpAnswer("200 OK", "x/y", "")},
    };
    for (const auto& [name, answer] : cases) {
        const HttpServer server([&](const auto& c) { c.send(answer); });
        EXPECT_EQ(fetch(server), ErrorCode::kDownloadFailed) << name;
        EXPECT_EQ(readFile(m_file), "the one before") << name;
    }
    EXPECT_EQ(fetch(m_whole), 0); // nothing bad was left to continue from
}

TEST_F(SpeechModelFetchTest, canBeBrokenOffAndContinued)
{
    std::latch isUnderWay(1);
    const HttpServer endless([&](const auto& c) {
        c.send("HTTP/1.1 200 OK\r\nContent-Length: 100003\r\n\r\n" + m_model.substr(0, 50'000));
        isUnderWay.count_down();
        c.waitForEnd();
    });
    std::stop_source stop;
    int code = 0;
    {
        const std::jthread fetching([&] { code = fetch(endless, stop.get_token()); });
        isUnderWay.wait();
        stop.request_stop();
    }
    EXPECT_EQ(code, ErrorCode::kCancelled);
    EXPECT_FALSE(std::filesystem::exists(m_file));
    while (fetch(m_torn) == ErrorCode::kNetworkFailed) {
    }
    EXPECT_EQ(readFile(m_file), m_model);
}

class SpeechSettingsTest : public testing::Test {
protected:
    SpeechSettings make(const std::string& site = "")
    {
        return SpeechSettings(
            {.clock = m_clock,
             .worker = m_worker,
             .messages = m_messages,
             .place = {
                 .file = m_folder / "Models" / "speech.bin",
                 .site = site,
                 .canUseModels = m_canUseModels,
                 .hasBasicEngine = [this] { return m_hasBasicEngine; },
                 .requireModel =
                     [](const std::filesystem::path& file) {
                         if (readFile(file) != "model")
                             throw Error(ErrorCode::kNoSpeechModel, file.string() + " is none.");
                     }}});
    }

    test::TemporaryFolder m_folder;
    test::FakeClock m_clock;
    test::FakeWorker m_worker;
    Messages m_messages{m_clock};
    bool m_canUseModels = true;
    bool m_hasBasicEngine = true;
};

TEST_F(SpeechSettingsTest, theEngineNamedIsTheOneThatListens)
{
    struct Case {
        const char* name;
        const char* model; // what lies in its place; null: nothing
        bool canUseModels;
        bool hasBasicEngine;
        const char* engine;
        const char* expectation;
    };
    const Case cases[] = {
        {"a whole model", "model", true, true, "whisper.cpp", "few wrong words"},
        {"a torn model", "mod", true, true, "PocketSphinx", "not a whole speech model"},
        {"a model and a program without whisper", "model", false, true, "PocketSphinx", "cannot"},
        {"no model", nullptr, true, true, "PocketSphinx", "one word in five"},
        {"no model and no dictionary", nullptr, true, false, "None", "pocketsphinx-en-us"},
        {"nothing that works", "mod", true, false, "None", "not a whole speech model"},
    };
    makeFolder(m_folder / "Models");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove(m_folder / "Models" / "speech.bin");
        if (c.model != nullptr)
            writeFile(m_folder / "Models" / "speech.bin", c.model);
        m_canUseModels = c.canUseModels;
        m_hasBasicEngine = c.hasBasicEngine;
        SpeechSettings settings = make();
        EXPECT_EQ(settings.engine(), ""); // nothing is claimed before it is known
        settings.refresh();
        EXPECT_THAT(settings.engine().toStdString(), HasSubstr(c.engine));
        EXPECT_THAT(settings.expectation().toStdString(), HasSubstr(c.expectation));
        EXPECT_EQ(settings.hasModel(), c.model != nullptr); // so that it can be removed
    }
}

TEST_F(SpeechSettingsTest, aPickedModelIsUsedWhereItLies)
{
    SpeechSettings settings = make();
    settings.refresh();
    EXPECT_FALSE(settings.hasModel());
    EXPECT_TRUE(settings.engine().contains("PocketSphinx"));
    EXPECT_TRUE(settings.expectation().contains("nothing leaves it"));
    EXPECT_TRUE(settings.offers().isEmpty()); // no place is known

    const auto good = m_folder / "mine.bin";
    writeFile(good, "model");
    settings.useFile(QString::fromStdString(good.string()));
    EXPECT_TRUE(settings.engine().contains("mine.bin"));
    EXPECT_TRUE(settings.expectation().contains("nothing leaves it"));
    EXPECT_EQ(readFile(m_folder / "Models" / "speech.bin"), "model");

    const auto bad = m_folder / "song.mp3";
    writeFile(bad, "la la");
    settings.useFile(QString::fromStdString(bad.string()));
    EXPECT_TRUE(m_messages.errorMessage().contains("song.mp3"));
    EXPECT_TRUE(settings.engine().contains("mine.bin"));

    settings.removeModel();
    EXPECT_FALSE(settings.hasModel());
    EXPECT_TRUE(std::filesystem::exists(good));
}

TEST_F(SpeechSettingsTest, aFetchIsToldAndItsFailureToo)
{
    const HttpServer server(
        [](const auto& c) { c.send(httpAnswer("200 OK", "text/html", "<html>")); });
    SpeechSettings settings = make(server.url());
    ASSERT_FALSE(settings.offers().isEmpty());
    settings.fetch("no such model");
    EXPECT_TRUE(server.requests().empty());
    m_worker.isHeld = true;
    settings.fetch(settings.offers().front().toMap()["id"].toString());
    EXPECT_TRUE(settings.isFetching());
    settings.fetch(settings.offers().back().toMap()["id"].toString()); // one at a time
    m_worker.release();
    EXPECT_FALSE(settings.isFetching());
    EXPECT_FALSE(settings.hasModel());
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_TRUE(m_messages.errorMessage().contains("not the model"));
}

TEST_F(SpeechSettingsTest, aCancelledFetchSaysNothing)
{
    const HttpServer server([](const auto& c) { c.waitForEnd(); });
    SpeechSettings settings = make(server.url());
    m_worker.isHeld = true;
    settings.fetch(settings.offers().front().toMap()["id"].toString());
    settings.cancelFetch();
    m_worker.release();
    EXPECT_FALSE(settings.isFetching());
    EXPECT_EQ(m_messages.errorMessage(), "");
}

TEST(SpeechModelOffers, haveWholeChecksums)
{
    for (const SpeechModelOffer& offer : speechModelOffers())
        EXPECT_EQ(offer.sha1.size(), 40U) << offer.id;
}

} // namespace
} // namespace zento
