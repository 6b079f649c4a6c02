#include "ZentoEngine/Spectrum.h"

#include <fftw3.h>

#include <cmath>
#include <mutex>
#include <new>
#include <numbers>
#include <type_traits>

namespace zento {

namespace {

// The library plans and forgets plans in tables of its own, which it does not guard.
std::mutex& plannerMutex()
{
    static std::mutex mutex;
    return mutex;
}

struct ReleasePlan {
    void operator()(fftwf_plan plan) const
    {
        const std::lock_guard lock(plannerMutex());
        fftwf_destroy_plan(plan);
    }
};

struct ReleaseArray {
    void operator()(void* array) const { fftwf_free(array); }
};

using Plan = std::unique_ptr<std::remove_pointer_t<fftwf_plan>, ReleasePlan>;

std::array<float, Spectrum::kSamples> hannWindow()
{
    std::array<float, Spectrum::kSamples> window{};
    const double scale = std::sqrt(2.0 / 3); // the mean of its squares is 1
    for (std::size_t i = 0; i < window.size(); ++i) {
        const double turn = 2 * std::numbers::pi * static_cast<double>(i) / Spectrum::kSamples;
        window[i] = static_cast<float>(scale * (1 - std::cos(turn)));
    }
    return window;
}

} // namespace

struct Spectrum::State {
    std::array<float, kSamples> window = hannWindow();
    std::unique_ptr<float, ReleaseArray> input{fftwf_alloc_real(kSamples)};
    std::unique_ptr<fftwf_complex, ReleaseArray> output{fftwf_alloc_complex(kBins + 1)};
    Plan plan;

    State()
    {
        if (!input || !output)
            throw std::bad_alloc();
        const std::lock_guard lock(plannerMutex());
        plan.reset(fftwf_plan_dft_r2c_1d(kSamples, input.get(), output.get(), FFTW_ESTIMATE));
        if (!plan)
            throw std::bad_alloc();
    }
};

Spectrum::Spectrum()
    : m_state(std::make_unique<State>())
{
}

Spectrum::~Spectrum() = default;

void Spectrum::magnitudes(std::span<const float, kSamples> samples, std::span<float, kBins> result)
{
    float* input = m_state->input.get();
    for (std::size_t i = 0; i < kSamples; ++i)
        input[i] = samples[i] * m_state->window[i];
    fftwf_execute(m_state->plan.get());
    const fftwf_complex* output = m_state->output.get();
    for (std::size_t k = 0; k < kBins; ++k) {
        const float re = output[k][0];
        const float im = output[k][1];
        result[k] = 2 * std::sqrt(re * re + im * im);
    }
}

} // namespace zento
