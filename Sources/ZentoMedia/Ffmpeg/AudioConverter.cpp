#include "ZentoMedia/Ffmpeg/AudioConverter.h"

#include "ZentoMedia/Ffmpeg/Failure.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <numeric>
#include <optional>
#include <utility>

namespace zento::ffmpeg {

namespace {

/// A channel layout with its own release.
class Layout {
public:
    explicit Layout(int channelCount) { av_channel_layout_default(&m_layout, channelCount); }
    explicit Layout(std::uint64_t places) { av_channel_layout_from_mask(&m_layout, places); }
    ~Layout() { av_channel_layout_uninit(&m_layout); }
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;

    AVChannelLayout* get() { return &m_layout; }
    bool hasPlaces() const { return m_layout.order == AV_CHANNEL_ORDER_NATIVE; }

private:
    AVChannelLayout m_layout{};
};

/// How much of each channel goes to one side, a value a channel.
struct StereoMatrix {
    std::vector<double> left;
    std::vector<double> right;
};

/// Both sides are scaled alike, so that full scale in all channels stays full scale.
void limitSum(StereoMatrix& matrix)
{
    const auto sum = [](const std::vector<double>& row) {
        return std::accumulate(row.begin(), row.end(), 0.0, [](double total, double value) {
            return total + std::abs(value);
        });
    };
    const double largest = std::max({sum(matrix.left), sum(matrix.right), 1.0});
    for (std::vector<double>* row : {&matrix.left, &matrix.right})
        for (double& value : *row)
            value /= largest;
}

/// By the places of the channels, or nothing if they have none.
std::optional<StereoMatrix> matrixByPlaces(Layout& input, std::size_t count)
{
    if (!input.hasPlaces())
        return {};
    Layout stereo(2);
    constexpr double kThreeDecibelsLess = std::numbers::sqrt2 / 2;
    constexpr double kNoLowFrequencyEffects = 0;
    // The library can limit the sum itself, but then takes the array for one of its own size.
    constexpr double kNoLimit = 1e9;
    std::vector<double> rows(2 * count, 0);
    const int built = swr_build_matrix2(
        input.get(),
        stereo.get(),
        kThreeDecibelsLess,
        kThreeDecibelsLess,
        kNoLowFrequencyEffects,
        kNoLimit,
        1,
        rows.data(),
        static_cast<std::ptrdiff_t>(count),
        AV_MATRIX_ENCODING_NONE,
        nullptr);
    if (built < 0)
        return {};
    const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(count);
    return StereoMatrix{{rows.begin(), middle}, {middle, rows.end()}};
}

StereoMatrix matrixByTurns(std::size_t count)
{
    StereoMatrix matrix{std::vector<double>(count, 0), std::vector<double>(count, 0)};
    for (std::size_t i = 0; i < count; ++i)
        (i % 2 == 0 ? matrix.left : matrix.right)[i] = 1;
    return matrix;
}

/// For one channel, or more than two.
std::vector<double> stereoMatrix(Layout& input, int channelCount)
{
    if (channelCount == 1)
        return {1, 1};
    const auto count = static_cast<std::size_t>(channelCount);
    StereoMatrix matrix = matrixByPlaces(input, count).value_or(matrixByTurns(count));
    limitSum(matrix);
    std::vector<double> rows = std::move(matrix.left);
    rows.insert(rows.end(), matrix.right.begin(), matrix.right.end());
    return rows;
}

} // namespace

AudioConverter::AudioConverter(
    std::filesystem::path path, ChannelMix mix, int rate, int channelCount)
    : m_path(std::move(path))
    , m_mix(mix)
    , m_rate(rate)
    , m_planes(static_cast<std::size_t>(mix == ChannelMix::Stereo ? 2 : channelCount))
    , m_views(m_planes.size())
{
}

AudioConverter::Format AudioConverter::formatOf(const AVFrame& frame)
{
    const bool hasPlaces = frame.ch_layout.order == AV_CHANNEL_ORDER_NATIVE;
    return {
        .sampleFormat = frame.format,
        .rate = frame.sample_rate,
        .channelCount = frame.ch_layout.nb_channels,
        .places = hasPlaces ? frame.ch_layout.u.mask : 0};
}

void AudioConverter::prepare(const AVFrame& frame)
{
    const Format format = formatOf(frame);
    Layout output(channelCount());
    Layout known(format.places);
    Layout assumed(format.channelCount);
    Layout& input = format.places != 0 && format.channelCount > 2 ? known : assumed;

    SwrContext* resampler = nullptr;
    int result = swr_alloc_set_opts2(
        &resampler,
        output.get(),
        AV_SAMPLE_FMT_FLTP,
        m_rate,
        input.get(),
        static_cast<AVSampleFormat>(format.sampleFormat),
        format.rate,
        0,
        nullptr);
    m_resampler.reset(resampler);
    if (result >= 0 && m_mix == ChannelMix::Stereo && format.channelCount != 2)
        result = swr_set_matrix(
            resampler, stereoMatrix(input, format.channelCount).data(), format.channelCount);
    if (result >= 0)
        result = swr_init(resampler);
    if (result < 0)
        throw failure("Could not convert the sound of", m_path, result, ErrorCode::kNoStereoBuffer);
    m_input = format;
}

AudioBlock AudioConverter::convert(const AVFrame& frame)
{
    m_length = 0;
    if (!m_resampler || formatOf(frame) != m_input) {
        if (m_resampler)
            append(nullptr);
        prepare(frame);
    }
    append(&frame);
    return block();
}

AudioBlock AudioConverter::drain()
{
    m_length = 0;
    if (m_resampler)
        append(nullptr);
    m_resampler.reset();
    return block();
}

/// Converts a frame, or what is held back, behind what the planes hold already.
void AudioConverter::append(const AVFrame* frame)
{
    const int count = frame == nullptr ? 0 : frame->nb_samples;
    const int room = swr_get_out_samples(m_resampler.get(), count);
    if (room <= 0)
        return;
    std::vector<std::uint8_t*> targets;
    targets.reserve(m_planes.size());
    for (std::vector<float>& plane : m_planes) {
        if (plane.size() < m_length + static_cast<std::size_t>(room))
            plane.resize(m_length + static_cast<std::size_t>(room));
        targets.push_back(reinterpret_cast<std::uint8_t*>(plane.data() + m_length));
    }
    // The library's parameter lacks a const: it reads the planes only.
    auto* const* planes = frame == nullptr ? nullptr : frame->extended_data;
    const int converted = swr_convert(
        m_resampler.get(),
        targets.data(),
        room,
        const_cast<const std::uint8_t**>(
            planes), // NOLINT(bugprone-multi-level-implicit-pointer-conversion)
        count);
    if (converted < 0)
        throw failure(
            "Could not convert the sound of", m_path, converted, ErrorCode::kNoStereoBuffer);
    m_length += static_cast<std::size_t>(converted);
}

AudioBlock AudioConverter::block()
{
    for (std::size_t i = 0; i < m_planes.size(); ++i)
        m_views[i] = std::span<const float>(m_planes[i]).first(m_length);
    return m_views;
}

} // namespace zento::ffmpeg
