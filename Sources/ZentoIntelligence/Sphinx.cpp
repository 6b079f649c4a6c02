#include "ZentoCore/Error.h"
#include "ZentoIntelligence/SpeechEngine.h"

#include <pocketsphinx.h>
#include <sphinxbase/err.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace zento {

namespace {

constexpr const char* kModel = "/usr/share/pocketsphinx/model/en-us";
constexpr double kFramesPerSecond = 100;

struct Release {
    void operator()(ps_decoder_t* decoder) const { ps_free(decoder); }
    void operator()(cmd_ln_t* options) const { cmd_ln_free_r(options); }
};

/// What the dictionary writes of a word, or nothing for what is none: "read(2)" is "read".
std::string_view plainWord(std::string_view word)
{
    if (word.starts_with('<') || word.starts_with('[') || word.starts_with('+'))
        return {};
    return word.substr(0, word.find('('));
}

std::vector<std::int16_t> samplesOf(std::span<const float> sound, const SpeechStretch& stretch)
{
    const auto index = [&](double time) {
        return static_cast<std::size_t>(
            std::clamp(time * kSpeechRate, 0.0, static_cast<double>(sound.size())));
    };
    const std::size_t begin = index(stretch.start);
    std::vector<std::int16_t> samples;
    for (const float sample : sound.subspan(begin, std::max(index(stretch.end), begin) - begin))
        samples.push_back(
            static_cast<std::int16_t>(std::lround(std::clamp(sample, -1.0F, 1.0F) * 32767)));
    return samples;
}

class Sphinx final : public SpeechEngine {
public:
    Sphinx()
    {
        err_set_logfp(nullptr);
        const std::string model = kModel;
        // Narrower than the default beams loses words; these cost half as much time again.
        m_options.reset(cmd_ln_init(
            nullptr,
            ps_args(),
            1,
            "-hmm",
            (model + "/en-us").c_str(),
            "-lm",
            (model + "/en-us.lm.bin").c_str(),
            "-dict",
            (model + "/cmudict-en-us.dict").c_str(),
            "-beam",
            "1e-70",
            "-wbeam",
            "1e-50",
            "-logfn",
            "/dev/null",
            nullptr));
        if (m_options)
            m_decoder.reset(ps_init(m_options.get()));
        if (!m_decoder)
            throw Error(ErrorCode::kNoSpeechModel, "no speech model in " + model);
    }

    std::vector<SpokenWord> words(
        std::span<const float> sound,
        std::span<const SpeechStretch> stretches,
        const std::function<void(double)>& onProgress,
        const std::stop_token& stop) override
    {
        std::vector<SpokenWord> result;
        for (std::size_t i = 0; i < stretches.size() && !stop.stop_requested(); ++i) {
            recognise(samplesOf(sound, stretches[i]), stretches[i].start, result);
            if (onProgress)
                onProgress(static_cast<double>(i + 1) / static_cast<double>(stretches.size()));
        }
        return result;
    }

private:
    void recognise(
        const std::vector<std::int16_t>& samples, double start, std::vector<SpokenWord>& result)
    {
        ps_decoder_t* decoder = m_decoder.get();
        if (samples.empty() || ps_start_utt(decoder) < 0)
            return;
        constexpr int kWhole = 1; // the loudness of all of it is known before it is heard
        ps_process_raw(decoder, samples.data(), samples.size(), 0, kWhole);
        ps_end_utt(decoder);
        for (ps_seg_t* word = ps_seg_iter(decoder); word != nullptr; word = ps_seg_next(word)) {
            int first = 0;
            int last = 0;
            ps_seg_frames(word, &first, &last);
            if (const std::string_view text = plainWord(ps_seg_word(word)); !text.empty())
                result.push_back(
                    {.start = start + first / kFramesPerSecond,
                     .end = start + (last + 1) / kFramesPerSecond,
                     .text = std::string(text)});
        }
    }

    std::unique_ptr<cmd_ln_t, Release> m_options;
    std::unique_ptr<ps_decoder_t, Release> m_decoder;
};

} // namespace

bool canUseSphinx()
{
    return std::ranges::all_of(
        std::array{"/en-us/mdef", "/en-us.lm.bin", "/cmudict-en-us.dict"}, [](const char* part) {
            std::error_code ignored;
            return std::filesystem::exists(std::string(kModel) + part, ignored);
        });
}

std::unique_ptr<SpeechEngine> makeSphinx()
{
    return std::make_unique<Sphinx>();
}

} // namespace zento
