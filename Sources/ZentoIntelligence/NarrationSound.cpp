#include "ZentoIntelligence/NarrationSound.h"

#include "ZentoIntelligence/SpeechStretch.h"
#include "ZentoMedia/AudioReader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

namespace zento {

namespace {

/// The level that one block of 50 ms in twenty exceeds: that of the loud syllables. Root mean
/// square.
float levelOf(std::span<const float> sound)
{
    constexpr std::size_t kBlock = kSpeechRate / 20;
    std::vector<float> levels;
    for (std::size_t at = 0; at < sound.size(); at += kBlock) {
        const auto block = sound.subspan(at, std::min(kBlock, sound.size() - at));
        float sum = 0;
        for (const float sample : block)
            sum += sample * sample;
        levels.push_back(std::sqrt(sum / static_cast<float>(block.size())));
    }
    const auto loud = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() * 19 / 20);
    std::ranges::nth_element(levels, loud);
    return *loud;
}

void scaleToSpeech(std::vector<float>& sound)
{
    constexpr float kQuiet = 0.03F;  // -30 dB of full scale
    constexpr float kSpoken = 0.1F;  // -20 dB
    constexpr float kMostGain = 100; // what is quieter is no voice, and stays so
    if (sound.empty())
        return;
    const auto [least, most] = std::ranges::minmax(sound);
    const float peak = std::max(-least, most);
    const float level = levelOf(sound);
    float gain = level < kQuiet ? std::min(kSpoken / std::max(level, 1e-9F), kMostGain) : 1;
    gain = std::min(gain, 1 / std::max(peak, 1e-9F));
    if (gain != 1)
        std::ranges::transform(sound, sound.begin(), [gain](float s) { return s * gain; });
}

} // namespace

std::vector<float> narrationSound(const std::filesystem::path& audio, const std::stop_token& stop)
{
    AudioReader reader(audio, ChannelMix::AsStored, kSpeechRate);
    std::vector<float> sound;
    sound.reserve(reader.expectedLength());
    while (const auto block = reader.next()) {
        if (stop.stop_requested())
            return {};
        const std::size_t begin = sound.size();
        sound.insert(sound.end(), block->front().begin(), block->front().end());
        for (const std::span<const float> channel : block->subspan(1))
            for (std::size_t i = 0; i < channel.size(); ++i)
                sound[begin + i] += channel[i];
    }
    scaleToSpeech(sound);
    return sound;
}

} // namespace zento
