#include "Material.h"

#include "TestSupport/Sounds.h"
#include "TestSupport/TemporaryFolder.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/AudioReader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>

namespace zento {
namespace {

constexpr const char* kProse = "/usr/share/pocketsphinx/test/data/librivox/";
constexpr std::size_t kPause = std::size_t{kSpeechRate} * 3 / 2; // samples

std::vector<float> readSound(const std::filesystem::path& file)
{
    AudioReader reader(file, ChannelMix::AsStored, kSpeechRate);
    std::vector<float> sound;
    while (const auto block = reader.next())
        sound.insert(sound.end(), block->front().begin(), block->front().end());
    return sound;
}

void addPause(std::vector<float>& sound)
{
    for (const float sample : test::noise(sound.size(), kPause))
        sound.push_back(sample * 0.0005F);
}

/// Where a voice over nothing begins and ends.
SpeechStretch voiced(const std::vector<float>& sound)
{
    constexpr float kHeard = 0.01F;
    const auto isHeard = [](float sample) { return std::abs(sample) > kHeard; };
    const auto first = std::ranges::find_if(sound, isHeard);
    const auto last = std::ranges::find_if(sound.rbegin(), sound.rend(), isHeard);
    return {
        static_cast<double>(first - sound.begin()) / kSpeechRate,
        static_cast<double>(sound.rend() - last) / kSpeechRate};
}

void append(SpokenMaterial& material, const std::vector<float>& sound, std::string sentence)
{
    const double start = static_cast<double>(material.sound.size()) / kSpeechRate;
    const SpeechStretch voice = voiced(sound);
    material.sound.insert(material.sound.end(), sound.begin(), sound.end());
    material.sentences.push_back(std::move(sentence));
    material.spoken.push_back({start + voice.start, start + voice.end});
    addPause(material.sound);
}

/// Hiss all the time, and a burst of it where a key is struck.
void addNoise(std::vector<float>& sound)
{
    const auto hiss = test::noise(11, sound.size());
    constexpr std::size_t kKeyEvery = kSpeechRate / 3;
    constexpr std::size_t kKeyLength = kSpeechRate / 100;
    float low = 0;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        low += 0.05F * (hiss[i] - low); // a fan is a low noise
        sound[i] += 0.03F * low + 0.002F * hiss[i];
        if (i % kKeyEvery < kKeyLength)
            sound[i] += 0.1F * hiss[i];
    }
}

} // namespace

SpokenMaterial readProse()
{
    SpokenMaterial material{"read prose", {}, {}, {}};
    addPause(material.sound);
    std::ifstream lines(std::string(kProse) + "transcription");
    for (std::string line; std::getline(lines, line);) {
        const std::size_t end = line.find(" </s> (");
        if (end == std::string::npos)
            continue;
        const std::string id = line.substr(end + 7, line.size() - end - 8);
        append(material, readSound(kProse + id + ".wav"), line.substr(4, end - 4));
    }
    return material;
}

SpokenMaterial shownProgram(Room room)
{
    SpokenMaterial material{
        room == Room::Quiet ? "synthetic, quiet" : "synthetic, noisy", {}, {}, {}};
    const test::TemporaryFolder folder;
    const std::string file = folder / "voice.wav";
    addPause(material.sound);
    for (const char* sentence :
         {"this is how i send an invoice to a customer",
          "first i open the list and choose the name",
          "then i type the amount and press the green button",
          "as you can see the preview updates immediately",
          "now the message is on its way and the money will follow",
          "you can change the colour of the window in the settings",
          "that is all it takes to be paid before the end of the week"}) {
        const std::string command =
            "flite -voice slt -t '" + std::string(sentence) + "' -o " + file;
        if (std::system(command.c_str()) != 0) // NOLINT(concurrency-mt-unsafe): one thread
            throw Error(ErrorCode::kProgramMissing, "flite does not speak");
        append(material, readSound(file), sentence);
    }
    if (room == Room::Noisy)
        addNoise(material.sound);
    return material;
}

SpokenMaterial repeated(const SpokenMaterial& material, double seconds)
{
    SpokenMaterial result{"ten minutes", {}, {}, {}};
    while (static_cast<double>(result.sound.size()) < seconds * kSpeechRate) {
        const double start = static_cast<double>(result.sound.size()) / kSpeechRate;
        result.sound.insert(result.sound.end(), material.sound.begin(), material.sound.end());
        result.sentences.insert(
            result.sentences.end(), material.sentences.begin(), material.sentences.end());
        for (const SpeechStretch& stretch : material.spoken)
            result.spoken.push_back({start + stretch.start, start + stretch.end});
    }
    return result;
}

} // namespace zento
