#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

/// Three short tracks that are synthesised on first use and kept, so that none has to be shipped.
///
/// Threading: any thread; two that make the same track at once both succeed.
namespace zento::MusicLibrary {

struct Track {
    std::string id; // also the name of its file
    std::string name;
    double bpm = 120;
    std::vector<double> bass; // semitones from A1, one a beat, looped
    double hatEvery = 0.5;    // beats

    std::filesystem::path url() const; // in dir()
    bool exists() const;
};

/// All there are, in the order they are offered.
const std::array<Track, 3>& all();

/// Where the tracks' files are kept, in the user's data folder. Not created by asking.
std::filesystem::path dir();

using ProgressCallback = std::function<void(double)>; // how much is done, in (0, 1]

/// The track's file of a minute, made if it is missing; one that exists is not touched.
///
/// Takes a fraction of a second, so not for a thread that draws. Throws `Error`: the system's
/// error, naming the file; `kCancelled` soon after `stop`. A file that did not get finished is
/// removed.
std::filesystem::path ensure(
    const Track& track, const ProgressCallback& onProgress = {}, const std::stop_token& stop = {});

} // namespace zento::MusicLibrary
