// How well and how fast a narration is heard: speech_bench [MODEL]. With a speech model whisper.cpp
// is measured as well. speech_bench --long [MINUTES]: what long ones without a voice cost.

#include "LongSound.h"
#include "Material.h"
#include "ProcessorTime.h"
#include "ZentoIntelligence/EnergySegments.h"
#include "ZentoIntelligence/SpeechEngine.h"
#include "ZentoIntelligence/VoiceActivity.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace zento {
namespace {

std::vector<std::string> plainWords(const std::string& text)
{
    std::string plain;
    for (const char c : text)
        if (std::isalpha(static_cast<unsigned char>(c)) != 0 || c == ' ')
            plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    std::istringstream stream(plain);
    return {std::istream_iterator<std::string>(stream), {}};
}

/// The fewest insertions, deletions and replacements that make one of the other.
std::size_t distance(const std::vector<std::string>& a, const std::vector<std::string>& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row.back();
}

struct Boundaries {
    double mean = 0; // seconds beside the true one
    double most = 0;
};

/// How far the first and the last word of every sentence lie from where it begins and ends.
Boundaries
boundaryErrors(const std::vector<SpokenWord>& words, const std::vector<SpeechStretch>& spoken)
{
    Boundaries result;
    int count = 0;
    const auto add = [&](double error) {
        result.mean += std::abs(error);
        result.most = std::max(result.most, std::abs(error));
        ++count;
    };
    for (const SpeechStretch& sentence : spoken) {
        const auto isOfIt = [&](const SpokenWord& word) {
            const double middle = (word.start + word.end) / 2;
            return middle > sentence.start - 0.5 && middle < sentence.end + 0.5;
        };
        const auto first = std::ranges::find_if(words, isOfIt);
        const auto last = std::ranges::find_if(words.rbegin(), words.rend(), isOfIt);
        if (first == words.end())
            continue;
        add(first->start - sentence.start);
        add(last->end - sentence.end);
    }
    result.mean /= std::max(count, 1);
    return result;
}

void measureEngine(SpeechEngine& engine, const char* name, const SpokenMaterial& material)
{
    const double begin = bench::processSeconds();
    const auto stretches = speechStretches(material.sound);
    const auto words = engine.words(material.sound, stretches, {}, {});
    const double took = bench::processSeconds() - begin;
    std::string heard;
    for (const SpokenWord& word : words)
        heard += word.text + ' ';
    std::string said;
    for (const std::string& sentence : material.sentences)
        said += sentence + ' ';
    const auto wanted = plainWords(said);
    const Boundaries errors = boundaryErrors(words, material.spoken);
    std::printf(
        "  %-14s %-18s %4zu words %5.1f %% wrong; boundaries %4.0f ms, at most %4.0f ms; %.3f of "
        "its length\n",
        name,
        material.name.c_str(),
        wanted.size(),
        100.0 * static_cast<double>(distance(wanted, plainWords(heard)))
            / static_cast<double>(wanted.size()),
        errors.mean * 1000,
        errors.most * 1000,
        took * kSpeechRate / static_cast<double>(material.sound.size()));
    std::fflush(stdout);
}

/// By hundredths of a second: what is said of what is found, and found of what is said.
void measureActivity(
    const char* name,
    const SpokenMaterial& material,
    const std::vector<SpeechStretch>& found,
    double took)
{
    const std::size_t count = material.sound.size() * 100 / kSpeechRate;
    const auto marked = [count](const std::vector<SpeechStretch>& stretches) {
        std::vector<bool> marks(count);
        for (const SpeechStretch& stretch : stretches)
            for (auto i = static_cast<std::size_t>(std::max(stretch.start, 0.0) * 100);
                 i < std::min(static_cast<std::size_t>(stretch.end * 100), count);
                 ++i)
                marks[i] = true;
        return marks;
    };
    const auto said = marked(material.spoken);
    const auto heard = marked(found);
    double both = 0;
    double extra = 0;
    double missed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        both += said[i] && heard[i] ? 1 : 0;
        extra += !said[i] && heard[i] ? 1 : 0;
        missed += said[i] && !heard[i] ? 1 : 0;
    }
    std::printf(
        "  %-14s %-18s F1 %.3f, %5.2f s of no speech, %5.2f s missed of %.1f; %.0f times as fast\n",
        name,
        material.name.c_str(),
        2 * both / (2 * both + extra + missed),
        extra / 100,
        missed / 100,
        (both + missed) / 100,
        static_cast<double>(material.sound.size()) / kSpeechRate / std::max(took, 1e-6));
}

void measureActivities(const SpokenMaterial& material)
{
    double begin = bench::processSeconds();
    const auto heard = speechStretches(material.sound);
    measureActivity("network", material, heard, bench::processSeconds() - begin);
    begin = bench::processSeconds();
    std::vector<SpeechStretch> loud;
    for (const TranscriptSegment& segment : energySegments(material.sound, kSpeechRate, 0))
        loud.push_back({segment.start, segment.end});
    measureActivity("loudness", material, loud, bench::processSeconds() - begin);
}

void run(const char* model)
{
    const std::vector<SpokenMaterial> materials = {
        readProse(), shownProgram(Room::Quiet), shownProgram(Room::Noisy)};
    std::cout << "where someone speaks\n";
    for (const SpokenMaterial& material : materials)
        measureActivities(material);
    std::cout << "what is said\n" << std::flush;
    for (const SpokenMaterial& material : materials)
        measureEngine(*makeSphinx(), "PocketSphinx", material);
    if (model != nullptr)
        for (const SpokenMaterial& material : materials)
            measureEngine(*makeWhisper(model), "whisper.cpp", material);
    measureEngine(*makeSphinx(), "PocketSphinx", repeated(materials[1], 600));
}

} // namespace
} // namespace zento

int main(int count, char** arguments)
try {
    if (count > 1 && std::string(arguments[1]) == "--long") {
        zento::measureLongSounds(count > 2 ? std::stod(arguments[2]) : 60);
        return 0;
    }
    zento::run(count > 1 ? arguments[1] : nullptr);
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
