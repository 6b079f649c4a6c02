#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace zento::test {

/// Samples of one channel after the other.
using Channels = std::vector<std::vector<float>>;

/// `count` samples of a function of the time in seconds.
std::vector<float>
sampled(const std::function<double(double)>& sound, double rate, std::size_t count);

/// A sine of an amplitude of 0.5.
std::vector<float> tone(double hertz, double rate, std::size_t count);

/// White noise in ±0.5, the same for the same seed: what is found at one place only.
std::vector<float> noise(std::uint64_t seed, std::size_t count);

/// Writes floats as a WAV file, without a word on where its channels stand.
void writeWav(const std::filesystem::path& path, int rate, const Channels& channels);

/// All channels of a file as they are stored.
Channels readSound(const std::filesystem::path& path);

/// Where in `sound`, from sample `from` on and before `to`, `pattern` fits best.
std::size_t placeOf(
    std::span<const float> pattern, std::span<const float> sound, std::size_t from, std::size_t to);

/// Root mean square of samples [from, to).
double levelOf(std::span<const float> sound, std::size_t from, std::size_t to);

/// Runs the media program with these arguments; false if it fails.
bool runFfmpeg(const std::string& arguments);

} // namespace zento::test
