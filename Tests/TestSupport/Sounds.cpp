#include "TestSupport/Sounds.h"

#include "TestSupport/Random.h"
#include "ZentoMedia/AudioReader.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>

namespace zento::test {

namespace {

void put(std::ostream& file, std::uint32_t number, int byteCount)
{
    for (int i = 0; i < byteCount; ++i)
        file.put(static_cast<char>(number >> (8U * static_cast<unsigned>(i)) & 0xFFU));
}

} // namespace

std::vector<float>
sampled(const std::function<double(double)>& sound, double rate, std::size_t count)
{
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(sound(static_cast<double>(i) / rate));
    return samples;
}

std::vector<float> tone(double hertz, double rate, std::size_t count)
{
    return sampled(
        [&](double t) { return 0.5 * std::sin(2 * std::numbers::pi * hertz * t); }, rate, count);
}

std::vector<float> noise(std::uint64_t seed, std::size_t count)
{
    Random random(seed);
    std::vector<float> samples(count);
    for (float& sample : samples)
        sample = static_cast<float>(random.uniform(-0.5, 0.5));
    return samples;
}

void writeWav(const std::filesystem::path& path, int rate, const Channels& channels)
{
    constexpr std::uint32_t kFloat = 3;
    const auto count = static_cast<std::uint32_t>(channels.size());
    const auto bytes = static_cast<std::uint32_t>(channels.front().size()) * count * 4;
    std::ofstream file(path, std::ios::binary);
    file << "RIFF";
    put(file, 36 + bytes, 4);
    file << "WAVEfmt ";
    put(file, 16, 4);
    put(file, kFloat, 2);
    put(file, count, 2);
    put(file, static_cast<std::uint32_t>(rate), 4);
    put(file, static_cast<std::uint32_t>(rate) * count * 4, 4);
    put(file, count * 4, 2);
    put(file, 32, 2);
    file << "data";
    put(file, bytes, 4);
    for (std::size_t i = 0; i < channels.front().size(); ++i)
        for (const auto& channel : channels)
            put(file, std::bit_cast<std::uint32_t>(channel[i]), 4);
}

Channels readSound(const std::filesystem::path& path)
{
    AudioReader reader(path);
    Channels channels(static_cast<std::size_t>(reader.channelCount()));
    while (const auto block = reader.next())
        for (std::size_t i = 0; i < channels.size(); ++i)
            channels[i].insert(channels[i].end(), (*block)[i].begin(), (*block)[i].end());
    return channels;
}

std::size_t placeOf(
    std::span<const float> pattern, std::span<const float> sound, std::size_t from, std::size_t to)
{
    std::size_t best = from;
    double bestSum = -1;
    for (std::size_t place = from; place < to && place + pattern.size() <= sound.size(); ++place) {
        double sum = 0;
        for (std::size_t i = 0; i < pattern.size(); ++i)
            sum += static_cast<double>(pattern[i]) * static_cast<double>(sound[place + i]);
        if (sum > bestSum) {
            bestSum = sum;
            best = place;
        }
    }
    return best;
}

double levelOf(std::span<const float> sound, std::size_t from, std::size_t to)
{
    double sum = 0;
    for (const float sample : sound.subspan(from, to - from))
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return std::sqrt(sum / static_cast<double>(to - from));
}

bool runFfmpeg(const std::string& arguments)
{
    const std::string command = "ffmpeg -y -v error " + arguments + " </dev/null";
    return std::system(command.c_str()) == 0; // NOLINT(concurrency-mt-unsafe)
}

} // namespace zento::test
