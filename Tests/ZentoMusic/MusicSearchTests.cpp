#include "TestSupport/HttpServer.h"
#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Music/MusicSearch.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace zento {
namespace {

using test::httpAnswer;
using test::HttpServer;
using ::testing::HasSubstr;

class MusicSearchTest : public ::testing::Test {
protected:
    MusicSearchTest() { setenv("XDG_CACHE_HOME", m_folder.path().c_str(), 1); }
    ~MusicSearchTest() override { unsetenv("XDG_CACHE_HOME"); }

    static MusicSearch at(const HttpServer& server)
    {
        return MusicSearch({.api = server.url(), .site = "music.test", .ownSite = "zento.test"});
    }
    static int codeOf(const std::function<void()>& call)
    {
        try {
            call();
        } catch (const Error& error) {
            return error.code();
        }
        return 0;
    }

    test::TemporaryFolder m_folder;
};

constexpr const char* kAnswer = R"({"result_count": 2, "results": [
    {"id": "a-1", "title": "Dawn", "creator": "Ann", "duration": 187500, "url": "http://x/a.mp3",
     "license": "by", "license_version": "4.0", "foreign_landing_url": "http://x/a", "tags": []},
    {"id": "b", "title": null, "url": "http://x/b.mp3", "license": "cc0"}]})";

TEST_F(MusicSearchTest, findsTracksAndCreditsThem)
{
    const HttpServer server(
        [](const auto& c) { c.send(httpAnswer("200 OK", "application/json", kAnswer)); });
    const MusicSearch search = at(server);
    const auto tracks = search.search("soft & slow");
    EXPECT_TRUE(server.requests().at(0).starts_with(
        "GET /v1/audio/?q=soft%20%26%20slow&category=music&license_type=commercial&page_size=8 "));
    EXPECT_THAT(server.requests().at(0), HasSubstr("User-Agent: Zento (zento.test)\r\n"));
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(minutesAndSeconds(*tracks[0].duration), "3:07");
    EXPECT_EQ(
        search.credit(tracks[0]),
        "Dawn by Ann\nCC BY 4.0\nSource: http://x/a\nFound via Openverse (music.test)");
    EXPECT_EQ(search.credit(tracks[1]), "Untitled\nCC CC0\nFound via Openverse (music.test)");
}

TEST_F(MusicSearchTest, whatIsNoListOfTracksFailsTheSearch)
{
    for (const char* body :
         {"",
          "<html>",
          "[]",
          "{}",
          R"({"results": {}})",
          R"({"results": [{"id": 1}]})",
          R"({"results": [{"id": "a"}]})"}) {
        const HttpServer server(
            [&](const auto& c) { c.send(httpAnswer("200 OK", "application/json", body)); });
        EXPECT_THROW(at(server).search("x"), Error) << body;
    }
    const HttpServer server(
        [](const auto& c) { c.send(httpAnswer("503 Busy", "application/json", kAnswer)); });
    EXPECT_THROW(at(server).search("x"), Error);
}

TEST_F(MusicSearchTest, aTrackIsFetchedOnceAndOnlyIfItIsSound)
{
    const test::TemporaryFolder media;
    test::writeWav(media / "tone.wav", 44100, {test::tone(440, 44100, 44100)});
    const std::string sound = readFile(media / "tone.wav");
    const HttpServer server([&](const auto& c) {
        if (c.request().starts_with("GET /tone"))
            c.send(httpAnswer("200 OK", "audio/mpeg", sound));
        else if (c.request().starts_with("GET /moved"))
            c.send("HTTP/1.1 302 Found\r\nLocation: /tone\r\nContent-Length: 0\r\n\r\n");
        else if (c.request().starts_with("GET /cut"))
            c.send("HTTP/1.1 200 OK\r\nContent-Length: 999\r\n\r\n" + sound.substr(0, 200));
        else if (c.request().starts_with("GET /page"))
            c.send(httpAnswer("200 OK", "audio/mpeg", "<html>not here</html>"));
        else
            c.send(httpAnswer("404 Not Found", "audio/mpeg", sound));
    });
    const MusicSearch search = at(server);
    const auto track = [&](const char* id, const char* path) {
        return OnlineTrack{.id = id, .url = server.url() + path, .license = "by"};
    };
    const auto file = search.download(track("one", "/moved"));
    EXPECT_EQ(file, m_folder.path() / "Zento" / "OnlineMusic" / "one.mp3");
    EXPECT_EQ(readFile(file), sound);
    const std::size_t asked = server.requests().size();
    search.download(track("one", "/moved"));
    EXPECT_EQ(server.requests().size(), asked);

    EXPECT_EQ(codeOf([&] { search.download(track("p", "/page")); }), ErrorCode::kDownloadFailed);
    EXPECT_EQ(codeOf([&] { search.download(track("m", "/gone")); }), ErrorCode::kDownloadFailed);
    EXPECT_EQ(codeOf([&] { search.download(track("c", "/cut")); }), ErrorCode::kNetworkFailed);
    for (const char* id : {"", "../one", "a/b", "."})
        EXPECT_EQ(codeOf([&] { search.download(track(id, "/tone")); }), ErrorCode::kDownloadFailed);
    const std::filesystem::directory_iterator files(file.parent_path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

} // namespace
} // namespace zento
