#pragma once

#include "ZentoMedia/AudioReader.h"

#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace zento {

class JsonObject;

/// A track as the Openverse audio search tells of it.
struct OnlineTrack {
    std::string id; // also the name of its file here
    std::optional<std::string> title;
    std::optional<std::string> creator;
    std::optional<int> duration; // milliseconds
    std::string url;             // of the sound
    std::string license;         // "by"
    std::optional<std::string> license_version;
    std::optional<std::string> foreign_landing_url; // the page of the work

    std::string licenseText() const; // "CC BY 4.0"
};

void decode(const JsonObject& object, OnlineTrack& track);

/// Where music is searched and what is said of us there. Deployment values.
struct MusicService {
    std::string api = "https://api.openverse.org"; // without a slash at the end
    std::string site = "openverse.org";            // its public address, for credits
    std::string ownSite;                           // the product's, for the User-Agent
};

/// Finds music that may be used commercially, and fetches it.
///
/// Threading: any thread; calls block, for a minute of silence at most. Errors: `Error`;
/// `kNetworkFailed` without an answer, `kDownloadFailed` for one that is no track, `kCancelled`.
class MusicSearch {
public:
    explicit MusicSearch(MusicService service = {});

    /// At most eight tracks for some words. A malformed answer is an error too.
    std::vector<OnlineTrack>
    search(const std::string& query, const std::stop_token& stop = {}) const;

    /// The track's file in the user's cache, fetched unless it is there. What does not hold sound
    /// is refused and not kept.
    std::filesystem::path
    download(const OnlineTrack& track, const std::stop_token& stop = {}) const;

    /// The track's sound in two channels at `sampleRate`, read from where it lies as it comes. What
    /// is no sound is refused.
    AudioReader
    stream(const OnlineTrack& track, int sampleRate, const std::stop_token& stop = {}) const;

    /// The text that has to go with a film that uses the track.
    std::string credit(const OnlineTrack& track) const;

private:
    MusicService m_service;
};

/// "3:07" for a duration in milliseconds.
std::string minutesAndSeconds(int milliseconds);

} // namespace zento
