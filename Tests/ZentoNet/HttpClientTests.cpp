#include "TestSupport/HttpServer.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoNet/HttpClient.h"

#include <gmock/gmock.h>

#include <array>
#include <latch>
#include <semaphore>
#include <stop_token>
#include <string>

namespace zento {
namespace {

using test::httpAnswer;
using test::HttpServer;
using ::testing::HasSubstr;

int codeOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr("127.0.0.1"));
        return error.code();
    }
    return 0;
}

TEST(HttpClientTest, aRequestSaysWhatItIsToldTo)
{
    const HttpServer server(
        [](const auto& connection) { connection.send(httpAnswer("200 OK", "text/x", "seen")); });
    HttpRequest request{.url = server.url() + "/a?b=c", .headers = {{"User-Agent", "Zento (x)"}}};
    HttpResponse response = fetch(request);
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.contentType, "text/x");
    EXPECT_EQ(response.body, "seen");
    request.body = "{\"a\":1}";
    request.headers.emplace_back("Content-Type", "application/json");
    fetch(request);
    const auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_TRUE(seen[0].starts_with("GET /a?b=c HTTP/1.1\r\n"));
    EXPECT_THAT(seen[0], HasSubstr("User-Agent: Zento (x)\r\n"));
    EXPECT_TRUE(seen[1].starts_with("POST /a?b=c HTTP/1.1\r\n"));
    EXPECT_TRUE(seen[1].ends_with("\r\n\r\n{\"a\":1}"));
}

TEST(HttpClientTest, whatIsNoAnswerIsAnErrorNamingTheHost)
{
    struct Case {
        const char* name;
        HttpServer::Answer answer;
    };
    const std::vector<Case> cases = {
        {"hangs up", [](const auto&) {}},
        {"no HTTP",
         [](const auto& c) { c.send("hello there, this is not what you want\r\n\r\n"); }},
        {"cut short",
         [](const auto& c) { c.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nshort"); }},
        {"too much",
         [](const auto& c) { c.send(httpAnswer("200 OK", "a/b", std::string(2000, 'x'))); }},
        {"to a file",
         [](const auto& c) {
             c.send("HTTP/1.1 302 Found\r\nLocation: file:///etc/hostname\r\n"
                    "Content-Length: 0\r\n\r\n");
         }},
        {"in circles",
         [](const auto& c) {
             c.send("HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 0\r\n\r\n");
         }},
        {"slower than it may be", [](const auto& c) { c.waitForEnd(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const HttpServer server(c.answer);
        const HttpRequest request{
            .url = server.url(), .timeout = std::chrono::milliseconds(2000), .mostBytes = 1000};
        EXPECT_EQ(codeOf([&] { fetch(request); }), ErrorCode::kNetworkFailed);
    }
    std::string gone;
    {
        const HttpServer server([](const auto&) {});
        gone = server.url();
    }
    EXPECT_EQ(codeOf([&] { fetch({.url = gone}); }), ErrorCode::kNetworkFailed);
}

TEST(HttpClientTest, aRefusedRedirectionIsAnAnswer)
{
    const HttpServer server([](const auto& c) {
        c.send("HTTP/1.1 302 Found\r\nLocation: /b\r\nContent-Length: 0\r\n\r\n");
    });
    EXPECT_EQ(fetch({.url = server.url(), .redirects = Redirects::Refuse}).status, 302);
    EXPECT_EQ(server.requests().size(), 1U);
}

std::string readAll(HttpStream& stream)
{
    std::string all;
    std::array<char, 700> piece{};
    while (const std::size_t count = stream.read(piece))
        all.append(piece.data(), count);
    return all;
}

TEST(HttpClientTest, aBodyIsReadAsItComes)
{
    std::binary_semaphore read{0};
    const HttpServer server([&](const auto& c) {
        if (c.request().starts_with("GET /moved")) {
            c.send("HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 0\r\n\r\n");
            return;
        }
        c.send("HTTP/1.1 200 OK\r\nContent-Length: 200005\r\n\r\nfirst");
        read.acquire(); // the rest is sent only when the beginning has arrived
        c.send(std::string(200'000, 'x'));
    });
    HttpStream stream({.url = server.url() + "/moved"});
    std::array<char, 100> piece{};
    const std::size_t count = stream.read(piece);
    EXPECT_EQ(std::string(piece.data(), count), "first");
    read.release();
    EXPECT_EQ(readAll(stream), std::string(200'000, 'x'));
    EXPECT_EQ(stream.read(piece), 0U);
}

TEST(HttpClientTest, aBodyThatIsNoneOrTooLongOrCutFails)
{
    const HttpServer server([](const auto& c) {
        if (c.request().starts_with("GET /gone"))
            c.send(httpAnswer("404 Not Found", "a/b", "no such thing"));
        else if (c.request().starts_with("GET /long"))
            c.send(httpAnswer("200 OK", "a/b", std::string(5000, 'x')));
        else
            c.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nshort");
    });
    for (const char* path : {"/gone", "/long", "/cut"}) {
        HttpStream stream({.url = server.url() + path, .mostBytes = 4000});
        EXPECT_EQ(codeOf([&] { readAll(stream); }), ErrorCode::kNetworkFailed) << path;
    }
}

TEST(HttpClientTest, aStreamIsCancelledWhileTheServerIsSilent)
{
    std::stop_source stop;
    const HttpServer server([&stop](const auto& connection) {
        stop.request_stop();
        connection.waitForEnd();
    });
    HttpStream stream({.url = server.url()}, stop.get_token());
    EXPECT_EQ(codeOf([&] { readAll(stream); }), ErrorCode::kCancelled);
}

TEST(HttpClientTest, aCancelledExchangeEndsWhileTheServerIsSilent)
{
    std::stop_source stop;
    const HttpServer server([&stop](const auto& connection) {
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nbegun");
        stop.request_stop();
        connection.waitForEnd();
    });
    EXPECT_EQ(
        codeOf([&] { fetch({.url = server.url()}, stop.get_token()); }), ErrorCode::kCancelled);
}

TEST(HttpClientTest, aDownloadGoesOnWhereItEnded)
{
    const std::string whole = "0123456789";
    const HttpServer server([&](const auto& connection) {
        const bool knowsRanges = connection.request().starts_with("GET /ranges");
        const std::size_t place = connection.request().find("Range: bytes=4-");
        if (connection.request().starts_with("GET /missing"))
            connection.send(httpAnswer("404 Not Found", "text/html", "<html>sorry</html>"));
        else if (knowsRanges && place != std::string::npos)
            connection.send(httpAnswer("206 Partial Content", "a/b", whole.substr(4)));
        else
            connection.send(httpAnswer("200 OK", "a/b", whole));
    });
    const test::TemporaryFolder folder;
    for (const char* path : {"/ranges", "/none"}) {
        SCOPED_TRACE(path);
        writeFile(folder / "part", "0123");
        std::uint64_t received = 0;
        const auto progress = [&](const HttpProgress& p) { received = p.received; };
        EXPECT_GT(download({.url = server.url() + path}, folder / "part", 4, progress).status, 199);
        EXPECT_EQ(readFile(folder / "part"), whole);
        EXPECT_GT(received, 0U);
    }
    // What a server says of its refusal is no part of the file.
    EXPECT_EQ(download({.url = server.url() + "/missing"}, folder / "new").status, 404);
    EXPECT_EQ(readFile(folder / "new"), "");
    EXPECT_THROW(download({.url = server.url()}, folder / "no folder" / "x"), Error);
}

TEST(HttpClientTest, queryTextsAreEncoded)
{
    EXPECT_EQ(percentEncoded("soft piano & Ümläut/~"), "soft%20piano%20%26%20%C3%9Cml%C3%A4ut%2F~");
}

} // namespace
} // namespace zento
