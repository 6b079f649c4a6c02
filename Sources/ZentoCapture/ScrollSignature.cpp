#include "ZentoCapture/ScrollSignature.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace zento {

namespace {

constexpr int kLeastHeight = 41;
constexpr int kLeastRows = 24;        // that two frames have to share
constexpr float kNearPerfect = 0.75F; // mean difference of grey values
constexpr float kNoMatch = 6.0F;
constexpr int kFineReach = 4;

/// The mean grey of some pixels of a row. Blue and red are summed in one word: 257 of each fit.
float meanGrey(const std::uint32_t* pixels, int count)
{
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;
    constexpr int kBlock = 256;
    for (int start = 0; start < count; start += kBlock) {
        std::uint32_t redAndBlue = 0;
        std::uint32_t greens = 0;
        const int end = std::min(start + kBlock, count);
        for (int i = start; i < end; ++i) {
            redAndBlue += pixels[i] & 0xFF00FFU;
            greens += pixels[i] >> 8 & 0xFFU;
        }
        red += redAndBlue >> 16;
        blue += redAndBlue & 0xFFFFU;
        green += greens;
    }
    const double sum = 0.299 * static_cast<double>(red) + 0.587 * static_cast<double>(green)
                       + 0.114 * static_cast<double>(blue);
    return static_cast<float>(std::floor(sum / count + 0.5)); // an 8-bit grey
}

float difference(const ScrollSignature::Row& a, const ScrollSignature::Row& b)
{
    float sum = 0;
    for (std::size_t c = 0; c < ScrollSignature::kColumns; ++c) {
        sum += std::fabs(a[c] - b[c]);
    }
    return sum;
}

/// The mean difference of the rows that a shift lays on each other, every `stride`-th of them.
float cost(
    const ScrollSignature& previous,
    const ScrollSignature& current,
    const ScrollBand& band,
    int shift,
    int stride)
{
    float sum = 0;
    int count = 0;
    for (int r = band.top; r < band.limit - shift; r += stride) {
        sum += difference(
            previous.rows[static_cast<std::size_t>(r) + static_cast<std::size_t>(shift)],
            current.rows[static_cast<std::size_t>(r)]);
        count += static_cast<int>(ScrollSignature::kColumns);
    }
    return sum / static_cast<float>(std::max(count, 1));
}

struct Best {
    int shift = 0;
    float cost = 0;
};

Best coarse(const ScrollSignature& previous, const ScrollSignature& current, const ScrollBand& band)
{
    Best best;
    for (int s = 0; s <= band.maxShift; ++s) {
        const int rows = band.limit - band.top - s;
        const float found =
            cost(previous, current, band, s, rows >= kLeastRows ? rows / kLeastRows : 1);
        if (s == 0 || found < best.cost) {
            best = {s, found};
        }
        if (found < kNearPerfect) {
            break;
        }
    }
    return best;
}

} // namespace

ScrollSignature::ScrollSignature(const Canvas& image)
    : rows(static_cast<std::size_t>(image.height()))
{
    const auto columns = static_cast<int>(kColumns);
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        const std::uint32_t* const row = image.pixels().row(y);
        for (int c = 0; c < columns; ++c) {
            const int first = std::min(c * width / columns, width - 1);
            const int count = std::max((c + 1) * width / columns - first, 1);
            rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(c)] =
                meanGrey(row + first, count);
        }
    }
}

ScrollBand::ScrollBand(int height)
    : top(static_cast<int>(height * 0.15))
    , limit(height - static_cast<int>(height * 0.1))
    , maxShift(height < kLeastHeight ? 0 : limit - top - kLeastRows)
{
}

std::optional<int> ScrollSignature::shift(const ScrollSignature& previous) const
{
    const ScrollBand band(std::min(height(), previous.height()));
    if (band.maxShift < 1) {
        return std::nullopt;
    }
    const Best rough = coarse(previous, *this, band);
    if (!(rough.cost < kNoMatch)) {
        return std::nullopt;
    }
    const int first = std::max(rough.shift - kFineReach, 0);
    const int last = std::min(rough.shift + kFineReach, band.maxShift);
    Best best{first, cost(previous, *this, band, first, 1)};
    for (int s = first + 1; s <= last; ++s) {
        const float found = cost(previous, *this, band, s, 1);
        if (found < best.cost) {
            best = {s, found};
        }
    }
    return best.shift;
}

/// Four lanes, so that one multiplication need not wait for the other.
std::vector<std::uint64_t> rowHashes(const Canvas& image, int first, int end)
{
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15ULL;
    constexpr int kLanes = 4;
    const Plane<const std::uint32_t> pixels = image.pixels();
    std::vector<std::uint64_t> hashes;
    hashes.reserve(static_cast<std::size_t>(pixels.height));
    for (int y = 0; y < pixels.height; ++y) {
        std::array<std::uint64_t, kLanes> lanes{1, 2, 3, 4};
        const std::uint32_t* const row = pixels.row(y);
        int x = first;
        for (; x + 2 * kLanes <= end; x += 2 * kLanes) {
            const std::uint32_t* two = row + x;
            for (std::uint64_t& lane : lanes) {
                std::uint64_t word = 0;
                std::memcpy(&word, two, sizeof word);
                lane = std::rotl((lane ^ word) * kOdd, 29);
                two += 2;
            }
        }
        for (; x < end; ++x) {
            lanes[0] = std::rotl((lanes[0] ^ row[x]) * kOdd, 29);
        }
        std::uint64_t hash = 0;
        for (const std::uint64_t lane : lanes) {
            hash = std::rotl((hash ^ lane) * kOdd, 31);
        }
        hashes.push_back(hash);
    }
    return hashes;
}

std::vector<int>
exactShifts(const std::vector<std::uint64_t>& previous, const std::vector<std::uint64_t>& current)
{
    const ScrollBand band(static_cast<int>(std::min(previous.size(), current.size())));
    std::vector<int> shifts;
    for (int s = 0; s <= band.maxShift; ++s) {
        const auto rows = static_cast<std::ptrdiff_t>(band.limit - band.top - s);
        const auto from = current.begin() + band.top;
        if (std::equal(from, from + rows, previous.begin() + band.top + s)) {
            shifts.push_back(s);
        }
    }
    return shifts;
}

} // namespace zento
