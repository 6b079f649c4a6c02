#include "Zento/Music/MusicSearch.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoCore/Json/JsonReader.h"
#include "ZentoCore/ScratchFile.h"
#include "ZentoCore/UserFolders.h"
#include "ZentoCore/Uuid.h"
#include "ZentoMedia/AudioReader.h"
#include "ZentoNet/HttpClient.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

namespace zento {

struct SearchResponse {
    std::vector<OnlineTrack> results;
};

namespace {

constexpr std::size_t kMostOfAnswer = std::size_t{4} << 20; // bytes
constexpr std::size_t kMostOfTrack = std::size_t{512} << 20;

std::string upperCase(std::string text)
{
    for (char& c : text) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

/// An id names a file of ours: a service must not choose where that lies.
void requireFileName(const std::string& id)
{
    constexpr std::string_view kAllowed =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    if (id.empty() || id.size() > 128 || id.find_first_not_of(kAllowed) != std::string::npos)
        throw Error(ErrorCode::kDownloadFailed, "the track's id \"" + id + "\" is no file name");
}

HttpRequest trackRequest(const OnlineTrack& track, const MusicService& service)
{
    HttpRequest request;
    request.url = track.url;
    request.headers = {{"User-Agent", "Zento (" + service.ownSite + ")"}};
    request.mostBytes = kMostOfTrack;
    return request;
}

void requireSound(const std::filesystem::path& file, const std::string& url)
try {
    const AudioReader reader(file);
} catch (const Error&) {
    throw Error(ErrorCode::kDownloadFailed, "what lies at " + url + " is no sound");
}

} // namespace

void decode(const JsonObject& object, SearchResponse& response)
{
    object.required("results", response.results);
}

void decode(const JsonObject& object, OnlineTrack& track)
{
    object.required("id", track.id);
    object.optional("title", track.title);
    object.optional("creator", track.creator);
    object.optional("duration", track.duration);
    object.required("url", track.url);
    object.required("license", track.license);
    object.optional("license_version", track.license_version);
    object.optional("foreign_landing_url", track.foreign_landing_url);
}

std::string OnlineTrack::licenseText() const
{
    return "CC " + upperCase(license) + (license_version ? " " + *license_version : "");
}

MusicSearch::MusicSearch(MusicService service)
    : m_service(std::move(service))
{
}

std::vector<OnlineTrack>
MusicSearch::search(const std::string& query, const std::stop_token& stop) const
{
    HttpRequest request;
    request.url = m_service.api + "/v1/audio/?q=" + percentEncoded(query)
                  + "&category=music&license_type=commercial&page_size=8";
    request.headers = {{"User-Agent", "Zento (" + m_service.ownSite + ")"}};
    request.mostBytes = kMostOfAnswer;
    const HttpResponse response = fetch(request, stop);
    if (response.status < 200 || response.status >= 300)
        throw Error(
            ErrorCode::kNetworkFailed,
            "the search answered with status " + std::to_string(response.status));
    return decodeDocument<SearchResponse>(response.body).results;
}

std::filesystem::path
MusicSearch::download(const OnlineTrack& track, const std::stop_token& stop) const
{
    requireFileName(track.id);
    const std::filesystem::path folder = userCacheFolder() / "Zento" / "OnlineMusic";
    const std::filesystem::path target = folder / (track.id + ".mp3");
    std::error_code ignored;
    if (std::filesystem::is_regular_file(target, ignored))
        return target;
    makeFolder(folder);
    const ScratchFile part(besideTarget(target, "." + makeUuid() + ".part"));
    const HttpRequest request = trackRequest(track, m_service);
    const HttpResponse response = zento::download(request, part.path(), 0, {}, stop);
    if (response.status < 200 || response.status >= 300)
        throw Error(ErrorCode::kDownloadFailed, "download failed");
    requireSound(part.path(), track.url);
    replaceFile(part.path(), target);
    return target;
}

AudioReader
MusicSearch::stream(const OnlineTrack& track, int sampleRate, const std::stop_token& stop) const
{
    const auto body = std::make_shared<HttpStream>(trackRequest(track, m_service), stop);
    const auto read = [body](std::span<char> into) { return body->read(into); };
    return {read, track.url, ChannelMix::Stereo, sampleRate};
}

std::string MusicSearch::credit(const OnlineTrack& track) const
{
    std::string text = track.title.value_or("Untitled");
    if (track.creator)
        text += " by " + *track.creator;
    text += "\n" + track.licenseText();
    if (track.foreign_landing_url)
        text += "\nSource: " + *track.foreign_landing_url;
    return text + "\nFound via Openverse (" + m_service.site + ")";
}

std::string minutesAndSeconds(int milliseconds)
{
    const int seconds = std::max(milliseconds, 0) / 1000;
    const std::string rest = std::to_string(seconds % 60);
    return std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

} // namespace zento
