#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>

namespace zento {

/// A speech model that can be fetched.
struct SpeechModelOffer {
    std::string_view id;   // "base.en-q5_1"
    std::string_view name; // for people
    int megabytes = 0;
    std::string_view sha1; // of the file, as its makers publish it
};

/// Those that are worth it on a computer without a graphics processor, the first recommended.
std::span<const SpeechModelOffer> speechModelOffers();

/// Fetches "ggml-{id}.bin" from below `site` and gives it the name `to` once it is whole and has
/// its checksum. What a fetch that was broken off left beside `to` is continued.
///
/// Blocks; `stop` ends it within a tenth of a second. `onProgress`: the share that is there, [0,
/// 1]. Throws `Error`: `kNetworkFailed`, `kDownloadFailed` for a server that refuses or sends
/// something else, `kCancelled`, or the system's.
void fetchSpeechModel(
    const SpeechModelOffer& offer,
    const std::string& site,
    const std::filesystem::path& to,
    const std::function<void(double)>& onProgress,
    const std::stop_token& stop);

} // namespace zento
