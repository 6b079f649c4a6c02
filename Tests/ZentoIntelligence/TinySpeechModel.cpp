#include "TinySpeechModel.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <numeric>
#include <random>
#include <vector>

namespace zento::test {

namespace {

constexpr int kVocabulary = 51864; // of the English models
constexpr int kWords = 50257;
constexpr int kFrames = 1500;
constexpr int kWidth = 64;
constexpr int kTokens = 64; // few, as it never comes to an end by itself
constexpr int kBands = 80;
constexpr int kBins = 201;

/// The half-precision form of a number that is neither tiny nor large.
std::uint16_t half(float number)
{
    const auto bits = std::bit_cast<std::uint32_t>(number);
    const auto exponent = static_cast<int>((bits >> 23) & 0xFF) - 127 + 15;
    if (exponent <= 0)
        return 0;
    return static_cast<std::uint16_t>(
        ((bits >> 16) & 0x8000) | (static_cast<std::uint32_t>(exponent) << 10)
        | ((bits >> 13) & 0x3FF));
}

class Writer {
public:
    void number(std::int32_t value) { append(value); }

    void text(const std::string& word)
    {
        number(static_cast<std::int32_t>(word.size()));
        m_bytes += word;
    }

    void filters()
    {
        number(kBands);
        number(kBins);
        for (int i = 0; i < kBands * kBins; ++i)
            append(i % kBins / 3 == i / kBins ? 0.02F : 0.0F);
    }

    enum class Kind { Float, Half };

    /// Norms are ones and offsets zeros, as in a trained model; all else is random.
    void table(const std::string& name, std::initializer_list<int> shape, Kind kind)
    {
        number(static_cast<std::int32_t>(shape.size()));
        number(static_cast<std::int32_t>(name.size()));
        number(kind == Kind::Half ? 1 : 0);
        for (auto size = std::rbegin(shape); size != std::rend(shape); ++size)
            number(*size);
        m_bytes += name;
        const bool isNorm = name.ends_with("ln.weight") || name.ends_with("ln_post.weight");
        const int count = std::accumulate(shape.begin(), shape.end(), 1, std::multiplies<>());
        for (int i = 0; i < count; ++i) {
            const float value = isNorm ? 1 : name.ends_with("bias") ? 0 : random();
            if (kind == Kind::Half)
                append(half(value));
            else
                append(value);
        }
    }

    void attention(const std::string& name)
    {
        norm(name + "_ln");
        for (const char* part : {".query", ".key", ".value", ".out"}) {
            table(name + part + ".weight", {kWidth, kWidth}, Kind::Half);
            if (std::string(part) != ".key")
                table(name + part + ".bias", {kWidth}, Kind::Float);
        }
    }

    void norm(const std::string& name)
    {
        table(name + ".weight", {kWidth}, Kind::Float);
        table(name + ".bias", {kWidth}, Kind::Float);
    }

    void perceptron(const std::string& name)
    {
        norm(name + "_ln");
        table(name + ".0.weight", {4 * kWidth, kWidth}, Kind::Half);
        table(name + ".0.bias", {4 * kWidth}, Kind::Float);
        table(name + ".2.weight", {kWidth, 4 * kWidth}, Kind::Half);
        table(name + ".2.bias", {kWidth}, Kind::Float);
    }

    std::string take() { return std::move(m_bytes); }

private:
    template <typename Value>
    void append(Value value)
    {
        m_bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
    }

    float random() { return (static_cast<float>(m_random() % 2001) / 1000.0F - 1) * 0.14F; }

    std::string m_bytes;
    std::mt19937 m_random{1};
};

} // namespace

std::string tinySpeechModel()
{
    Writer out;
    for (const int value :
         {0x67676d6c, kVocabulary, kFrames, kWidth, 1, 1, kTokens, kWidth, 1, 1, kBands, 1})
        out.number(value);
    out.filters();
    out.number(kWords);
    for (int i = 0; i < kWords; ++i)
        out.text(i == 0 ? " " : " w" + std::to_string(i)); // a blank is looked up
    using enum Writer::Kind;
    out.table("encoder.positional_embedding", {kFrames, kWidth}, Float);
    out.table("encoder.conv1.weight", {kWidth, kBands, 3}, Half);
    out.table("encoder.conv1.bias", {kWidth, 1}, Float);
    out.table("encoder.conv2.weight", {kWidth, kWidth, 3}, Half);
    out.table("encoder.conv2.bias", {kWidth, 1}, Float);
    out.norm("encoder.ln_post");
    out.attention("encoder.blocks.0.attn");
    out.perceptron("encoder.blocks.0.mlp");
    out.table("decoder.positional_embedding", {kTokens, kWidth}, Float);
    out.table("decoder.token_embedding.weight", {kVocabulary, kWidth}, Half);
    out.norm("decoder.ln");
    out.attention("decoder.blocks.0.attn");
    out.attention("decoder.blocks.0.cross_attn");
    out.perceptron("decoder.blocks.0.mlp");
    return out.take();
}

} // namespace zento::test
