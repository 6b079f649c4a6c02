#include "ZentoImaging/Scale.h"

#include "ZentoImaging/Kernels/ScaleRows.hpp"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <memory>

namespace zento {

namespace {

constexpr double kSharpFrom = 0.8; // the scale from which Catmull-Rom keeps text sharp unaliased
constexpr double kLeastScale = 0.02;
constexpr double kMostScale = 16;

enum class Kernel { CatmullRom, Mitchell, Triangle };

/// The family of cubics of Mitchell and Netravali, "Reconstruction Filters in Computer Graphics",
/// 1988, equation 8.
double cubic(double b, double c, double x)
{
    if (x < 1) {
        return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + 6 - 2 * b) / 6;
    }
    if (x < 2) {
        return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x + 8 * b
                + 24 * c)
               / 6;
    }
    return 0;
}

double weightAt(Kernel kernel, double x)
{
    const double distance = std::abs(x);
    switch (kernel) {
    case Kernel::CatmullRom:
        return cubic(0, 0.5, distance);
    case Kernel::Mitchell:
        return cubic(1 / 3.0, 1 / 3.0, distance);
    case Kernel::Triangle:
        return std::max(0.0, 1 - distance);
    }
    return 0;
}

struct Axis {
    AxisPlacement placement;
    SampleRange range;
    ScaleFilter filter = ScaleFilter::Sharp;
    int sourceSize = 0;

    bool operator==(const Axis&) const = default;
};

/// The source samples and weights of every wanted sample. `first` may lie outside the source.
struct Taps {
    int perSample = 0;
    std::vector<int> first;
    std::vector<std::int16_t> weights; // [sample][tap]
};

/// Rounds weights so that their sum stays exactly one: flat areas keep their value.
void quantise(const double* weights, double sum, int count, std::int16_t* out)
{
    const double factor = kernel::kOne / sum;
    int total = 0;
    int largest = 0;
    for (int t = 0; t < count; ++t) {
        // Truncation of a positive number, for std::floor is a call on a plain x86-64.
        const int value = int(weights[t] * factor + 65536.5) - 65536;
        out[t] = static_cast<std::int16_t>(value);
        total += value;
        largest = weights[t] > weights[largest] ? t : largest;
    }
    out[largest] = static_cast<std::int16_t>(out[largest] + kernel::kOne - total);
}

void buildTaps(const Axis& axis, Taps& taps)
{
    const double sign = axis.placement.scale < 0 ? -1 : 1;
    const double magnitude = std::clamp(std::abs(axis.placement.scale), kLeastScale, kMostScale);
    const bool sharp = magnitude >= kSharpFrom;
    const Kernel kernel = sharp                               ? Kernel::CatmullRom
                          : axis.filter == ScaleFilter::Sharp ? Kernel::Mitchell
                                                              : Kernel::Triangle;
    const double squeeze = sharp ? 1.0 : magnitude; // kernel units a source sample
    const double reach = (kernel == Kernel::Triangle ? 1 : 2) / squeeze;
    taps.perSample = int(std::ceil(2 * reach));
    const auto count = std::size_t(axis.range.size());
    taps.first.resize(count);
    taps.weights.resize(count * std::size_t(taps.perSample));
    std::vector<double> weights(std::size_t(taps.perSample));
    const double perSample = sign / magnitude;
    for (std::size_t i = 0; i < count; ++i) {
        const double place =
            (axis.range.begin + double(i) + 0.5 - axis.placement.origin) * perSample - 0.5;
        const int first = int(std::floor(place - reach)) + 1;
        double sum = 0;
        for (int t = 0; t < taps.perSample; ++t) {
            weights[std::size_t(t)] = weightAt(kernel, (first + t - place) * squeeze);
            sum += weights[std::size_t(t)];
        }
        quantise(
            weights.data(), sum, taps.perSample, &taps.weights[i * std::size_t(taps.perSample)]);
        // Wholly outside, every tap reads the same edge.
        taps.first[i] = std::clamp(first, -taps.perSample, axis.sourceSize);
    }
}

constexpr std::size_t kBlock = kernel::WindowTable::kBlock;
constexpr int kWindow = int(kernel::WindowTable::kWindow);

/// The most that the first taps of a block of samples lie apart.
int widestBlock(const Taps& taps)
{
    int widest = 0;
    for (std::size_t x = 0; x < taps.first.size(); x += kBlock) {
        const auto begin = taps.first.begin() + std::ptrdiff_t(x);
        const auto end =
            taps.first.begin() + std::ptrdiff_t(std::min(x + kBlock, taps.first.size()));
        const auto [least, most] = std::minmax_element(begin, end);
        widest = std::max(widest, *most - *least);
    }
    return widest;
}

void buildWindows(const Taps& taps, int rowBegin, int spread, kernel::WindowTable& table)
{
    const std::size_t count = taps.first.size();
    constexpr std::size_t kPadding = kernel::WindowTable::kPadding;
    const auto perSample = std::size_t(taps.perSample);
    table.count = count;
    table.padded = (count + kPadding - 1) / kPadding * kPadding;
    const std::size_t wanted = (perSample + 1) / 2;
    const auto room = [&](int window) { return std::size_t(std::max(0, window - spread)) / 2; };
    // Half a window is one lookup, a whole one three instructions and more to load.
    table.firstHalfOnly = room(kWindow / 2) > 0;
    table.pairs = std::min(wanted, room(table.firstHalfOnly ? kWindow / 2 : kWindow));
    table.windows = (wanted + table.pairs - 1) / table.pairs;
    table.bases.resize(table.padded / kBlock);
    table.picks.assign(table.pairs * table.padded * 4, 0);
    table.weights.assign(table.windows * table.pairs * table.padded * 2, 0);
    for (std::size_t x = 0; x < count; x += kBlock) {
        const std::size_t end = std::min(x + kBlock, count);
        int base = taps.first[x];
        for (std::size_t i = x; i < end; ++i) {
            base = std::min(base, taps.first[i]);
        }
        table.bases[x / kBlock] = base - rowBegin;
        for (std::size_t i = x; i < end; ++i) {
            for (std::size_t p = 0; p < table.pairs; ++p) {
                std::uint8_t* at = &table.picks[(p * table.padded + i) * 4];
                for (int b = 0; b < 4; ++b) {
                    const int byte = 2 * (taps.first[i] - base + int(2 * p)) + b;
                    at[b] = static_cast<std::uint8_t>(byte < 16 ? byte : 0x80 + byte - 16);
                }
            }
            for (std::size_t t = 0; t < perSample; ++t) {
                table.weights[(t / 2 * table.padded + i) * 2 + t % 2] =
                    taps.weights[i * perSample + t];
            }
        }
    }
    for (std::size_t b = (count + kBlock - 1) / kBlock; b < table.bases.size(); ++b) {
        table.bases[b] = table.bases[b - 1];
    }
}

void buildDots(const Taps& taps, int rowBegin, kernel::DotTable& table)
{
    const auto perSample = std::size_t(taps.perSample);
    table.count = taps.first.size();
    table.taps = (perSample + 7) / 8 * 8;
    table.firsts.resize(table.count);
    table.weights.assign(table.count * table.taps, 0);
    for (std::size_t i = 0; i < table.count; ++i) {
        table.firsts[i] = taps.first[i] - rowBegin;
        std::copy_n(&taps.weights[i * perSample], perSample, &table.weights[i * table.taps]);
    }
}

} // namespace

SampleRange touchedSamples(double from, double to, int size)
{
    const int begin = int(std::clamp(std::floor(from), 0.0, double(size)));
    const int end = int(std::clamp(std::ceil(to), double(begin), double(size)));
    return {begin, end};
}

struct PlaneScaler::Plan {
    Axis x;
    Axis y;
    Taps rows;
    Taps columns;
    bool byWindows = true;
    kernel::WindowTable windows;
    kernel::DotTable dots;

    // The columns of the source that are read, and how the row between the passes is laid out: its
    // first sample stands for column `rowBegin`, which may lie outside the source.
    int sourceBegin = 0;
    int sourceEnd = 0;
    int rowBegin = 0;
    int rowEnd = 0;
    std::vector<std::int16_t> row;

    void prepareColumns();

    template <typename Sample>
    void scaleRow(Plane<const Sample> source, int y, std::uint8_t* out);
};

void PlaneScaler::Plan::prepareColumns()
{
    buildTaps(x, columns);
    const auto [least, most] = std::ranges::minmax(columns.first);
    rowBegin = least;
    rowEnd = most + columns.perSample;
    sourceBegin = std::clamp(rowBegin, 0, x.sourceSize - 1);
    sourceEnd = std::clamp(rowEnd, sourceBegin + 1, x.sourceSize);
    const int spread = widestBlock(columns);
    byWindows = spread + 2 <= kWindow;
    if (byWindows) {
        buildWindows(columns, rowBegin, spread, windows);
    } else {
        buildDots(columns, rowBegin, dots);
    }
    // Vectors read past the last tap, by a window and the padding of the last group.
    constexpr std::size_t kRowPadding = 2 * kernel::WindowTable::kWindow + 8;
    const int length = std::max(rowEnd - rowBegin, sourceEnd - sourceBegin) + columns.perSample;
    row.assign(std::size_t(length) + kRowPadding, 0);
}

template <typename Sample>
void PlaneScaler::Plan::scaleRow(Plane<const Sample> source, int y0, std::uint8_t* out)
{
    assert(source.width == x.sourceSize && source.height == y.sourceSize);
    assert(y0 >= y.range.begin && y0 < y.range.end);
    constexpr int kMostTaps = int(4 / kLeastScale) + 1;
    std::array<const Sample*, kMostTaps> from; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const auto index = std::size_t(y0 - y.range.begin);
    const auto taps = std::size_t(rows.perSample);
    for (std::size_t t = 0; t < taps; ++t) {
        const int line = std::clamp(rows.first[index] + int(t), 0, source.height - 1);
        from[t] = source.row(line) + sourceBegin;
    }
    const int before = std::max(0, sourceBegin - rowBegin);
    const int read = sourceEnd - sourceBegin;
    std::int16_t* middle = row.data() + before;
    kernel::weightRows(
        from.data(), &rows.weights[index * taps], rows.perSample, std::size_t(read), middle);
    std::fill(row.data(), middle, middle[0]);
    const int length = std::max(rowEnd - rowBegin, before + read);
    std::fill(middle + read, row.data() + length, middle[read - 1]);
    if (byWindows) {
        kernel::scaleByWindows(row.data(), windows, out);
    } else {
        kernel::scaleByDots(row.data(), dots, out);
    }
}

PlaneScaler::PlaneScaler()
    : m_plan(std::make_unique<Plan>())
{
}

PlaneScaler::~PlaneScaler() = default;
PlaneScaler::PlaneScaler(PlaneScaler&&) noexcept = default;
PlaneScaler& PlaneScaler::operator=(PlaneScaler&&) noexcept = default;

void PlaneScaler::prepare(
    int sourceWidth,
    int sourceHeight,
    AxisPlacement x,
    AxisPlacement y,
    SampleRange columns,
    SampleRange rows,
    ScaleFilter filter)
{
    assert(sourceWidth > 0 && sourceHeight > 0);
    const Axis xAxis{x, columns, filter, sourceWidth};
    const Axis yAxis{y, rows, filter, sourceHeight};
    if (xAxis != m_plan->x) {
        m_plan->x = xAxis;
        if (columns.size() > 0) {
            m_plan->prepareColumns();
        }
    }
    if (yAxis != m_plan->y) {
        m_plan->y = yAxis;
        buildTaps(yAxis, m_plan->rows);
    }
}

void PlaneScaler::scaleRow(Plane<const std::uint8_t> source, int y, std::uint8_t* out)
{
    if (m_plan->x.range.size() > 0) {
        m_plan->scaleRow(source, y, out);
    }
}

void PlaneScaler::scaleRow(Plane<const std::uint16_t> source, int y, std::uint8_t* out)
{
    if (m_plan->x.range.size() > 0) {
        m_plan->scaleRow(source, y, out);
    }
}

SampleRange PlaneScaler::columns() const
{
    return m_plan->x.range;
}
SampleRange PlaneScaler::rows() const
{
    return m_plan->y.range;
}

} // namespace zento
