#include "ZentoCore/Error.h"
#include "ZentoCore/Text.h"
#include "ZentoIntelligence/SpeechEngine.h"
#include "ZentoIntelligence/SpeechModelFile.h"

#ifdef ZENTO_HAS_WHISPER
#include <whisper.h>
#endif

#include <algorithm>
#include <cmath>
#include <exception>
#include <thread>

namespace zento {

#ifdef ZENTO_HAS_WHISPER

namespace {

constexpr double kWindow = 29; // seconds: what the model hears at once costs the same, full or not
constexpr double kTicksPerSecond = 100;

struct Release {
    void operator()(whisper_context* model) const { whisper_free(model); }
};

/// Neighbouring stretches heard in one go, with the pauses between them.
struct Passage {
    double start = 0; // seconds
    double end = 0;
};

std::vector<Passage> passages(std::span<const SpeechStretch> stretches)
{
    std::vector<Passage> result;
    for (const SpeechStretch& stretch : stretches) {
        if (!result.empty() && stretch.end - result.back().start <= kWindow)
            result.back().end = stretch.end;
        else
            result.push_back({stretch.start, stretch.end});
    }
    return result;
}

/// A model in a pause makes words up.
bool isSpoken(const SpokenWord& word, std::span<const SpeechStretch> stretches)
{
    return std::ranges::any_of(stretches, [&](const SpeechStretch& stretch) {
        return word.start < stretch.end && word.end > stretch.start;
    });
}

/// Not a word: "[music]", "(applause)".
bool isRemark(std::string_view word)
{
    return word.starts_with('[') || word.starts_with('(') || word.ends_with(']')
           || word.ends_with(')');
}

struct Listening {
    std::stop_token stop;
    const std::function<void(double)>* onProgress = nullptr;
    double before = 0; // share of the whole that was heard before this passage
    double share = 0;  // of this passage
};

whisper_full_params parameters(Listening& listening, bool knowsLanguages)
{
    whisper_full_params p = whisper_full_default_params(WHISPER_SAMPLING_GREEDY);
    p.n_threads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, 4U));
    p.language = knowsLanguages ? "auto" : "en";
    p.token_timestamps = true;
    p.max_len = 1; // a segment a word
    p.split_on_word = true;
    p.no_context = true;
    p.print_progress = p.print_realtime = p.print_special = p.print_timestamps = false;
    p.abort_callback = [](void* user) {
        return static_cast<const Listening*>(user)->stop.stop_requested();
    };
    p.abort_callback_user_data = &listening;
    p.progress_callback = [](whisper_context*, whisper_state*, int percent, void* user) {
        constexpr double kWhole = 100;
        const auto& l = *static_cast<const Listening*>(user);
        if (*l.onProgress && percent > 0)
            (*l.onProgress)(l.before + l.share * std::min(percent / kWhole, 1.0));
    };
    p.progress_callback_user_data = &listening;
    return p;
}

/// Whether the model came to the end of the sound. It throws where its vocabulary lacks a word.
bool heard(whisper_context* model, const whisper_full_params& options, std::span<const float> sound)
{
    try {
        return whisper_full(model, options, sound.data(), static_cast<int>(sound.size())) == 0;
    } catch (const std::exception&) {
        return false;
    }
}

class Whisper final : public SpeechEngine {
public:
    explicit Whisper(const std::filesystem::path& file)
    {
        requireSpeechModel(file);
        whisper_log_set([](ggml_log_level, const char*, void*) {}, nullptr);
        whisper_context_params options = whisper_context_default_params();
        options.use_gpu = false;
        m_model.reset(whisper_init_from_file_with_params(file.c_str(), options));
        if (!m_model)
            throw Error(ErrorCode::kNoSpeechModel, file.string() + " is not a whole speech model.");
    }

    std::vector<SpokenWord> words(
        std::span<const float> sound,
        std::span<const SpeechStretch> stretches,
        const std::function<void(double)>& onProgress,
        const std::stop_token& stop) override
    {
        std::vector<SpokenWord> result;
        const auto all = passages(stretches);
        const double share = 1 / static_cast<double>(std::max<std::size_t>(all.size(), 1));
        Listening listening{stop, &onProgress, 0, share};
        for (const Passage& passage : all) {
            if (stop.stop_requested())
                break;
            hear(sound, passage, listening, result);
            listening.before += share;
        }
        std::erase_if(result, [&](const SpokenWord& word) { return !isSpoken(word, stretches); });
        return result;
    }

private:
    void hear(
        std::span<const float> sound,
        const Passage& passage,
        Listening& listening,
        std::vector<SpokenWord>& result)
    {
        const auto index = [&](double time) {
            return static_cast<std::size_t>(
                std::clamp(time * kSpeechRate, 0.0, static_cast<double>(sound.size())));
        };
        const std::size_t begin = index(passage.start);
        const auto samples = sound.subspan(begin, index(passage.end) - begin);
        const auto options = parameters(listening, whisper_is_multilingual(m_model.get()) != 0);
        if (!heard(m_model.get(), options, samples)) {
            if (listening.stop.stop_requested())
                return;
            throw Error(ErrorCode::kNoSpeechModel, "The speech model failed.");
        }
        const int count = whisper_full_n_segments(m_model.get());
        for (int i = 0; i < count; ++i)
            take(i, passage, result);
    }

    void take(int index, const Passage& passage, std::vector<SpokenWord>& result)
    {
        // What a broken model says is not even text.
        const std::string said = wellFormed(whisper_full_get_segment_text(m_model.get(), index));
        const std::string_view word = trimmed(said);
        if (word.empty() || isRemark(word))
            return;
        const auto time = [&](std::int64_t ticks) {
            return std::clamp(
                passage.start + static_cast<double>(ticks) / kTicksPerSecond,
                passage.start,
                passage.end);
        };
        const double start = time(whisper_full_get_segment_t0(m_model.get(), index));
        const double end = time(whisper_full_get_segment_t1(m_model.get(), index));
        result.push_back({start, std::max(start, end), std::string(word)});
    }

    std::unique_ptr<whisper_context, Release> m_model;
};

} // namespace

bool canUseWhisper()
{
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")
           && __builtin_cpu_supports("f16c") && __builtin_cpu_supports("bmi2");
}

std::unique_ptr<SpeechEngine> makeWhisper(const std::filesystem::path& model)
{
    if (!canUseWhisper())
        throw Error(ErrorCode::kNoSpeechModel, "This processor is too old for speech models.");
    return std::make_unique<Whisper>(model);
}

#else

bool canUseWhisper()
{
    return false;
}

std::unique_ptr<SpeechEngine> makeWhisper(const std::filesystem::path&)
{
    throw Error(ErrorCode::kNoSpeechModel, "This build cannot use speech models.");
}

#endif

std::unique_ptr<SpeechEngine> makeBestEngine()
{
    return makeEngineFor(speechModelFile());
}

std::unique_ptr<SpeechEngine> makeEngineFor(const std::filesystem::path& model)
{
    std::error_code ignored;
    if (canUseWhisper() && std::filesystem::exists(model, ignored)) {
        try {
            return makeWhisper(model);
        } catch (const Error&) { // NOLINT(bugprone-empty-catch): there is another
        }
    }
    return makeSphinx();
}

} // namespace zento
