#pragma once

#include "ZentoEngine/BeatGrid.h"

#include <filesystem>
#include <span>
#include <stop_token>
#include <vector>

/// Listens to music and reports one steady pulse, its tempo taken as constant over the whole file:
/// cuts are to land on a grid, and a track is to start on a beat.
///
/// The flux of the spectrum gives an envelope of onsets; its autocorrelation, weighted towards 118
/// beats per minute, gives the period in whole hops of 512 samples, between 60 and 185 beats per
/// minute; the phase is the one of 96 whose beats meet the most flux below 260 Hz.
///
/// The samples are 32-bit floats throughout, and the transform is planned without measuring, so
/// that a machine always gives the same grid; another one may differ in last bits of the spectrum.
///
/// Threading: all functions from any thread.
namespace zento::BeatDetector {

struct MonoSound {
    std::vector<float> samples;
    double sampleRate = 0;
    bool operator==(const MonoSound&) const = default;
};

/// The mean of a file's channels, at the file's own rate. Throws `Error`: as `AudioReader`; code
/// `kNoMonoBuffer` if memory runs out or the file has more than 2^32 - 1 samples; code `kCancelled`
/// soon after `stop` is requested.
MonoSound loadMono(const std::filesystem::path& file, const std::stop_token& stop = {});

/// Where there is no answer, sound too short or nothing in it, 120 beats per minute from 0. Never
/// fails.
BeatGrid analyze(std::span<const float> samples, double sampleRate);

/// `loadMono`, then `analyze`.
BeatGrid analyze(const std::filesystem::path& file, const std::stop_token& stop = {});

} // namespace zento::BeatDetector
