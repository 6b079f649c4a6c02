#include "LanguageServer.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/Json/JsonWriter.h"
#include "ZentoIntelligence/CopyGenerator.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdlib>
#include <latch>
#include <thread>

namespace zento {
namespace {

using Availability = SystemLanguageModel::Availability;
using test::completionsSaying;
using test::httpAnswer;
using test::HttpServer;
using test::modelAt;
using test::ollama;
using test::ollamaSaying;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

const LanguageRequest kQuestion = {
    .instructions = "Be brief.", .prompt = "Say \"x\".", .writeSchema = [](JsonWriter& json) {
        json.beginObject();
        json.key("type");
        json.value("object");
        json.endObject();
    }};

std::string bodyOf(const std::string& request)
{
    return request.substr(request.find("\r\n\r\n") + 4);
}

TEST(LanguageModel, ollamaIsAskedInItsForm)
{
    const HttpServer server(ollamaSaying("{\"a\":\"b\\c\"}"));
    const SystemLanguageModel model = modelAt(server);
    EXPECT_EQ(model.availability(), Availability::Available);
    EXPECT_EQ(model.model(), "small:1b");
    EXPECT_EQ(model.respond(kQuestion), "{\"a\":\"b\\c\"}");
    EXPECT_EQ(
        bodyOf(server.requests().back()),
        R"({"model":"small:1b","messages":[{"role":"system","content":"Be brief."},)"
        R"({"role":"user","content":"Say \"x\".\n\nAnswer with one JSON object of this schema:\n)"
        R"({\"type\":\"object\"}"}],"stream":false,"format":{"type":"object"},)"
        R"("options":{"num_ctx":8192}})");
}

TEST(LanguageModel, completionsAreAskedInTheirForm)
{
    const HttpServer server(completionsSaying("{}", "stop"));
    const SystemLanguageModel model = modelAt(server);
    EXPECT_THAT(model.models(), ElementsAre("/models/a.gguf", "b"));
    EXPECT_EQ(model.respond(kQuestion), "{}");
    EXPECT_THAT(
        bodyOf(server.requests().back()),
        HasSubstr(R"("stream":false,"response_format":{"type":"json_schema","json_schema":)"
                  R"({"name":"reply","strict":true,"schema":{"type":"object"}}}})"));
}

TEST(LanguageModel, theUsersChoiceOfAModelIsKeptWhereItExists)
{
    const HttpServer server(completionsSaying("{}", "stop"));
    EXPECT_EQ(SystemLanguageModel::find({server.url(), "b"}).model(), "b");
    EXPECT_EQ(SystemLanguageModel::find({server.url(), "gone"}).model(), "/models/a.gguf");
}

TEST(LanguageModel, whatAUserTypesIsAnAddress)
{
    EXPECT_EQ(serverAddress(" box:8080 "), "http://box:8080");
    EXPECT_EQ(serverAddress("https://box/"), "https://box");
    EXPECT_EQ(serverAddress("http://127.0.0.1:1234/v1/"), "http://127.0.0.1:1234");
}

TEST(LanguageModel, whatAServerSaysTellsWhetherItCanBeAsked)
{
    struct Case {
        const char* name;
        HttpServer::Answer answer;
        Availability availability;
    };
    const auto only = [](std::string path, std::string answer) {
        return [path = std::move(path), answer = std::move(answer)](const auto& connection) {
            connection.send(connection.request().starts_with(path) ? answer : test::notFound());
        };
    };
    const std::vector<Case> cases = {
        {"a model", ollamaSaying("{}"), Availability::Available},
        {"no model yet",
         only("GET /api/tags ", test::json(R"({"models":[]})")),
         Availability::ModelMissing},
        {"no models list",
         only("GET /v1/models ", test::json(R"({"data":[]})")),
         Availability::ModelMissing},
        {"loading",
         only(
             "GET /v1/models ",
             httpAnswer(
                 "503 Service Unavailable",
                 "application/json",
                 R"({"error":{"code":503,"message":"Loading model"}})")),
         Availability::ModelLoading},
        {"a web page",
         [](const auto& c) { c.send(httpAnswer("200 OK", "text/html", "<!doctype html><p>Hi")); },
         Availability::NoServer},
        {"wrong types",
         only("GET /api/tags ", test::json(R"({"models":{"name":1}})")),
         Availability::NoServer},
        {"a list of numbers",
         only("GET /v1/models ", test::json(R"({"data":[1,2]})")),
         Availability::NoServer},
        {"a redirection",
         [](const auto& c) {
             c.send("HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1:9/\r\nContent-Length: "
                    "0\r\n\r\n");
         },
         Availability::NoServer},
        {"hangs up", [](const auto&) {}, Availability::NoServer},
    };
    for (const auto& [name, answer, availability] : cases) {
        const HttpServer server(answer);
        EXPECT_EQ(modelAt(server).availability(), availability) << name;
    }
}

TEST(LanguageModel, theFirstServerWithAModelIsTaken)
{
    const HttpServer nothing([](const auto& c) { c.send(test::notFound()); });
    const HttpServer empty([](const auto& c) { c.send(test::json(R"({"models":[]})")); });
    const HttpServer full(completionsSaying("{}", "stop"));
    const auto found = [](const std::vector<std::string>& addresses) {
        return SystemLanguageModel::find({}, {}, addresses);
    };
    EXPECT_EQ(found({nothing.url(), empty.url(), full.url()}).address(), full.url());
    EXPECT_EQ(found({nothing.url(), empty.url()}).availability(), Availability::ModelMissing);
    EXPECT_EQ(found({nothing.url()}).availability(), Availability::NoServer);
    EXPECT_EQ(found({}).availability(), Availability::NoServer);
    // A host of the user's is the only one asked.
    EXPECT_EQ(
        SystemLanguageModel::find({.host = nothing.url(), .model = {}}, {}, {full.url()})
            .availability(),
        Availability::NoServer);
}

TEST(LanguageModel, everyAddressLookedAtUnaskedIsOfThisMachine)
{
    for (const std::string& address : SystemLanguageModel::usualAddresses())
        EXPECT_TRUE(address.starts_with("http://127.0.0.1:")) << address;
}

int codeOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const Error& error) {
        EXPECT_STRNE(error.what(), "");
        return error.code();
    }
    return 0;
}

TEST(LanguageModel, aBadAnswerIsAnErrorAndTheTemplatesWrite)
{
    std::atomic<int> elsewhere = 0;
    const HttpServer other([&elsewhere](const auto& c) {
        ++elsewhere;
        c.send(test::json(R"({"message":{"content":"{}"}})"));
    });
    const auto says = [](std::string body) {
        return [body = std::move(body)](const auto& c) { c.send(test::json(body)); };
    };
    std::string large; // ten megabytes
    for (int i = 0; i < 100'000; ++i)
        large.append(100, 'a');
    struct Case {
        const char* name;
        HttpServer::Answer answer;
        int code;
    };
    const std::vector<Case> cases = {
        {"a web page",
         [](const auto& c) { c.send(httpAnswer("200 OK", "text/html", "<html><p>Sign in")); },
         ErrorCode::kNoUsableAnswer},
        {"no such model",
         [](const auto& c) {
             c.send(httpAnswer("404 Not Found", "application/json", R"({"error":"no model"})"));
         },
         ErrorCode::kNoUsableAnswer},
        {"content of a wrong type",
         says(R"({"message":{"content":7}})"),
         ErrorCode::kNoUsableAnswer},
        {"no message", says(R"({"done":true})"), ErrorCode::kNoUsableAnswer},
        {"cut off at a limit",
         says(R"({"message":{"content":"{\"title\":"},"done_reason":"length"})"),
         ErrorCode::kNoUsableAnswer},
        {"ten megabytes",
         says(R"({"message":{"content":")" + large + "\"}}"),
         ErrorCode::kNetworkFailed},
        {"deeply nested", says(std::string(100'000, '[')), ErrorCode::kNoUsableAnswer},
        {"a redirection to another server",
         [&other](const auto& c) {
             c.send(
                 "HTTP/1.1 307 Temporary Redirect\r\nLocation: " + other.url()
                 + "/api/chat\r\nContent-Length: 0\r\n\r\n");
         },
         ErrorCode::kNoUsableAnswer},
        {"hangs up", [](const auto&) {}, ErrorCode::kNetworkFailed},
        {"cut short",
         [](const auto& c) { c.send("HTTP/1.1 200 OK\r\nContent-Length: 900\r\n\r\n{\"mess"); },
         ErrorCode::kNetworkFailed},
    };
    for (const auto& [name, answer, code] : cases) {
        const HttpServer server(ollama(answer));
        const SystemLanguageModel model = modelAt(server);
        EXPECT_EQ(codeOf([&] { model.respond(kQuestion); }), code) << name;
        const SessionDigest digest = {.appName = "Notes", .sourceDuration = 4};
        EXPECT_EQ(CopyGenerator::copy(digest, model), CopyGenerator::fallback(digest)) << name;
    }
    EXPECT_EQ(elsewhere, 0);
}

TEST(LanguageModel, aSlowDripEndsWithTheTimeThatIsGiven)
{
    const HttpServer server(ollama([](const auto& c) {
        c.send("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n{");
        while (c.send(" "))
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }));
    EXPECT_EQ(
        codeOf([&] { modelAt(server).respond(kQuestion, {}, std::chrono::milliseconds(200)); }),
        ErrorCode::kNetworkFailed);
}

TEST(LanguageModel, aQuestionCanBeGivenUp)
{
    std::latch isAsked(1);
    const HttpServer server(ollama([&isAsked](const auto& c) {
        isAsked.count_down();
        c.waitForEnd();
    }));
    const SystemLanguageModel model = modelAt(server);
    std::stop_source stop;
    int code = 0;
    {
        const std::jthread asking(
            [&] { code = codeOf([&] { model.respond(kQuestion, stop.get_token()); }); });
        isAsked.wait();
        stop.request_stop();
    }
    EXPECT_EQ(code, ErrorCode::kCancelled);
}

TEST(LanguageModel, noProxyHearsWhatIsAsked)
{
    const HttpServer proxy([](const auto& c) { c.send(test::notFound()); });
    const HttpServer server(ollamaSaying("{}"));
    // Nothing else runs in this process that reads the environment.
    setenv("http_proxy", proxy.url().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    const auto availability = modelAt(server).availability();
    unsetenv("http_proxy"); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(availability, Availability::Available);
    EXPECT_TRUE(proxy.requests().empty());
}

} // namespace
} // namespace zento
