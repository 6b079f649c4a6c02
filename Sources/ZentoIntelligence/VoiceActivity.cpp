#include "ZentoIntelligence/VoiceActivity.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>

namespace zento {

std::span<const char> voiceModel();

namespace {

constexpr std::size_t kWindow = 256;           // samples of a transform
constexpr std::size_t kStride = 128;           // from one to the next
constexpr std::size_t kBins = 129;             // frequencies of one
constexpr std::size_t kTimes = 4;              // transforms of a frame
constexpr std::size_t kPadded = 64 + 512 + 64; // a frame with what came before and its mirror
constexpr std::size_t kGates = 512;            // four of each cell
constexpr std::size_t kCells = 128;

struct Layer {
    std::size_t in;
    std::size_t out;
    std::size_t stride;
};
constexpr std::array<Layer, 4> kLayers = {{{129, 128, 1}, {128, 64, 2}, {64, 64, 2}, {64, 128, 1}}};

/// The weights one after the other, as the file has them.
class Reader {
public:
    explicit Reader(const std::vector<float>& weights)
        : m_left(weights)
    {
    }
    std::span<const float> take(std::size_t count)
    {
        const auto taken = m_left.first(count);
        m_left = m_left.subspan(count);
        return taken;
    }

private:
    std::span<const float> m_left;
};

float dot(const float* a, const float* b, std::size_t count)
{
    float sum = 0;
    for (std::size_t i = 0; i < count; ++i)
        sum += a[i] * b[i];
    return sum;
}

float sigmoid(float x)
{
    return 1 / (1 + std::exp(-x));
}

/// The magnitudes of a padded frame: [frequency][time].
std::vector<float> spectrum(std::span<const float, kPadded> sound, std::span<const float> basis)
{
    std::vector<float> result(kBins * kTimes);
    for (std::size_t bin = 0; bin < kBins; ++bin) {
        const float* cosine = &basis[bin * kWindow];
        const float* sine = &basis[(bin + kBins) * kWindow];
        for (std::size_t t = 0; t < kTimes; ++t) {
            const float* window = &sound[t * kStride];
            const float real = dot(cosine, window, kWindow);
            const float imaginary = dot(sine, window, kWindow);
            result[bin * kTimes + t] = std::sqrt(real * real + imaginary * imaginary);
        }
    }
    return result;
}

/// A convolution over three times with zeros around, and what is negative cut off.
std::vector<float> convolved(
    const std::vector<float>& input,
    const Layer& layer,
    std::span<const float> weights,
    std::span<const float> bias)
{
    const std::size_t times = input.size() / layer.in;
    const std::size_t outTimes = (times + layer.stride - 1) / layer.stride;
    std::vector<float> result(layer.out * outTimes);
    for (std::size_t o = 0; o < layer.out; ++o) {
        for (std::size_t t = 0; t < outTimes; ++t) {
            float sum = bias[o];
            for (std::size_t k = 0; k < 3; ++k) {
                const std::size_t at = t * layer.stride + k; // one further than the sample
                if (at < 1 || at > times)
                    continue;
                for (std::size_t i = 0; i < layer.in; ++i)
                    sum += weights[(o * layer.in + i) * 3 + k] * input[i * times + at - 1];
            }
            result[o * outTimes + t] = std::max(sum, 0.0F);
        }
    }
    return result;
}

} // namespace

VoiceActivity::VoiceActivity()
{
    const std::span<const char> bytes = voiceModel();
    m_weights.resize(bytes.size() / sizeof(float));
    std::memcpy(m_weights.data(), bytes.data(), m_weights.size() * sizeof(float));
}

float VoiceActivity::probability(std::span<const float, kFrame> frame)
{
    std::array<float, kPadded> sound{};
    std::ranges::copy(m_context, sound.begin());
    std::ranges::copy(frame, sound.begin() + kContext);
    std::ranges::copy(frame.last<kContext>(), m_context.begin());
    constexpr std::size_t kEnd = kContext + kFrame;
    for (std::size_t i = 0; i < kContext; ++i)
        sound[kEnd + i] = sound[kEnd - 2 - i];

    Reader weights(m_weights);
    std::vector<float> features = spectrum(sound, weights.take(2 * kBins * kWindow));
    for (const Layer& layer : kLayers) {
        const auto kernel = weights.take(layer.out * layer.in * 3);
        features = convolved(features, layer, kernel, weights.take(layer.out));
    }
    const auto fromInput = weights.take(kGates * kCells);
    const auto fromOutput = weights.take(kGates * kCells);
    const auto inputBias = weights.take(kGates);
    const auto outputBias = weights.take(kGates);
    std::array<float, kGates> gates{};
    for (std::size_t g = 0; g < kGates; ++g)
        gates[g] = inputBias[g] + outputBias[g]
                   + dot(&fromInput[g * kCells], features.data(), kCells)
                   + dot(&fromOutput[g * kCells], m_output.data(), kCells);
    const auto decision = weights.take(kCells);
    float sum = weights.take(1)[0];
    for (std::size_t c = 0; c < kCells; ++c) {
        m_cell[c] = sigmoid(gates[kCells + c]) * m_cell[c]
                    + sigmoid(gates[c]) * std::tanh(gates[2 * kCells + c]);
        m_output[c] = sigmoid(gates[3 * kCells + c]) * std::tanh(m_cell[c]);
        sum += decision[c] * std::max(m_output[c], 0.0F);
    }
    return sigmoid(sum);
}

std::vector<SpeechStretch>
speechStretches(std::span<const float> sound, const std::stop_token& stop)
{
    constexpr float kSpeech = 0.5F;
    constexpr int kFramesToBegin = 3;
    constexpr int kFramesToEnd = 9;
    constexpr double kAround = 0.2; // seconds
    constexpr double kLeastGap = 0.3;
    constexpr double kFrameTime = double(VoiceActivity::kFrame) / kSpeechRate;
    const double length = static_cast<double>(sound.size()) / kSpeechRate;
    std::vector<SpeechStretch> result;
    const auto close = [&](double start, double end) {
        start = std::max(start - kAround, 0.0);
        end = std::min(end + kAround, length);
        if (!result.empty() && start - result.back().end < kLeastGap)
            result.back().end = end;
        else
            result.push_back({start, end});
    };
    VoiceActivity voice;
    bool speaks = false;
    int inARow = 0; // frames that say otherwise
    double start = 0;
    double time = 0;
    std::array<float, VoiceActivity::kFrame> frame{};
    for (std::size_t at = 0; at < sound.size(); at += frame.size(), time += kFrameTime) {
        if (stop.stop_requested())
            return {};
        const auto piece = sound.subspan(at, std::min(frame.size(), sound.size() - at));
        frame.fill(0);
        std::ranges::copy(piece, frame.begin());
        const bool isSpeech = voice.probability(frame) > kSpeech;
        inARow = isSpeech == speaks ? 0 : inARow + 1;
        if (inARow < (speaks ? kFramesToEnd : kFramesToBegin))
            continue;
        const double changed = time - (inARow - 1) * kFrameTime;
        if (speaks)
            close(start, changed);
        start = changed;
        speaks = !speaks;
        inARow = 0;
    }
    if (speaks)
        close(start, length);
    return result;
}

} // namespace zento
