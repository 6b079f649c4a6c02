#include "ZentoImaging/Lzw.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstddef>
#include <optional>

namespace zento {

namespace {

constexpr int kLargestCodes = 4096;

/// Codes of a growing number of bits, the lowest first.
class BitStream {
public:
    explicit BitStream(std::vector<std::uint8_t>& bytes)
        : m_bytes(bytes)
    {
    }

    void put(int code, int bits)
    {
        m_pending |= static_cast<std::uint32_t>(code) << m_count;
        m_count += bits;
        while (m_count >= 8) {
            putByte();
        }
    }

    void flush()
    {
        if (m_count > 0) {
            putByte();
        }
    }

private:
    void putByte()
    {
        m_bytes.push_back(static_cast<std::uint8_t>(m_pending));
        m_pending >>= 8;
        m_count -= 8;
    }

    std::vector<std::uint8_t>& m_bytes;
    std::uint32_t m_pending = 0;
    int m_count = 0;
};

/// The strings that have a code, as a tree: a node is a string, its children are longer by one
/// index.
class Strings {
public:
    struct Node {
        std::int16_t firstChild = kNone;
        std::int16_t nextSibling = kNone;
        std::uint8_t index = 0; // the string's last one
        int parent = kNone;
    };
    static constexpr std::int16_t kNone = -1;

    explicit Strings(int roots)
        : m_roots(roots)
    {
        clear();
    }

    void clear()
    {
        m_count = m_roots + 2; // after the codes for "clear" and "end"
        for (int i = 0; i < m_roots; ++i) {
            node(i) = {.index = static_cast<std::uint8_t>(i)};
        }
    }

    bool isFull() const { return m_count == kLargestCodes; }
    int count() const { return m_count; }

    void add(int parent, std::uint8_t index)
    {
        node(m_count) = {.nextSibling = node(parent).firstChild, .index = index, .parent = parent};
        node(parent).firstChild = static_cast<std::int16_t>(m_count);
        ++m_count;
    }

    const Node& operator[](int code) const { return m_nodes[static_cast<std::size_t>(code)]; }

private:
    Node& node(int code) { return m_nodes[static_cast<std::size_t>(code)]; }

    int m_roots;
    int m_count = 0;
    std::array<Node, kLargestCodes> m_nodes;
};

/// For each index those that may take its place, itself first.
class Neighbours {
public:
    explicit Neighbours(const LzwPalette& palette)
        : m_lists(palette.colors.size())
    {
        // An index is nearer to the pixel than the tolerance if it is nearest: twice the length.
        const std::uint32_t reach = 4 * palette.tolerance;
        for (std::size_t a = 0; a < palette.colors.size(); ++a) {
            for (std::size_t b = 0; b < palette.colors.size(); ++b) {
                if (a == b || colorDistance(palette.colors[a], palette.colors[b]) <= reach) {
                    m_lists[a].push_back(static_cast<std::uint8_t>(b));
                }
            }
        }
    }

    std::span<const std::uint8_t> of(std::uint8_t index) const { return m_lists[index]; }

private:
    std::vector<std::vector<std::uint8_t>> m_lists;
};

struct Match {
    int code = 0;
    std::size_t length = 0;
    std::uint64_t error = 0;
};

/// Finds the longest string that may stand for the pixels from one on.
class Search {
public:
    Search(const Strings& strings, std::span<const LzwPixel> pixels, const LzwPalette& palette)
        : m_strings(strings)
        , m_pixels(pixels)
        , m_palette(palette)
        , m_neighbours(palette)
    {
    }

    Match longestFrom(std::size_t first)
    {
        m_first = first;
        m_best = {};
        for (const std::uint8_t root : m_neighbours.of(m_pixels[first].nearest)) {
            visit(root, 0, 0);
        }
        visit(m_palette.unchanged(), 0, 0);
        return m_best;
    }

private:
    static constexpr std::uint32_t kRefused = ~0U;

    /// What it costs to show a pixel so.
    std::uint32_t cost(const LzwPixel& pixel, std::uint8_t index) const
    {
        if (index == m_palette.unchanged()) {
            return pixel.mayStay ? 0 : kRefused;
        }
        const std::uint32_t distance = colorDistance(pixel.color, m_palette.colors[index]);
        const bool isBest = index == pixel.nearest && !pixel.mayStay;
        return isBest || distance <= m_palette.tolerance ? distance : kRefused;
    }

    void visit(int code, std::size_t length, std::uint64_t error)
    {
        const std::size_t pixel = m_first + length;
        if (pixel == m_pixels.size()) {
            return;
        }
        const std::uint32_t step = cost(m_pixels[pixel], m_strings[code].index);
        if (step == kRefused) {
            return;
        }
        ++length;
        error += step;
        if (length > m_best.length || (length == m_best.length && error < m_best.error)) {
            m_best = {code, length, error};
        }
        for (int child = m_strings[code].firstChild; child != Strings::kNone;
             child = m_strings[child].nextSibling) {
            visit(child, length, error);
        }
    }

    const Strings& m_strings;
    std::span<const LzwPixel> m_pixels;
    const LzwPalette& m_palette;
    Neighbours m_neighbours;
    std::size_t m_first = 0;
    Match m_best;
};

} // namespace

LzwImage compressLzw(std::span<const LzwPixel> pixels, const LzwPalette& palette)
{
    assert(!palette.colors.empty() && palette.colors.size() <= 255);
    LzwImage image{
        .codeSize = std::max(2, static_cast<int>(std::bit_width(palette.colors.size())))};
    image.indices.resize(pixels.size());
    const int clearCode = 1 << image.codeSize;
    const int endCode = clearCode + 1;
    Strings strings(clearCode);
    Search search(strings, pixels, palette);
    BitStream stream(image.bytes);
    int bits = image.codeSize + 1;
    stream.put(clearCode, bits);

    std::optional<int> before;
    for (std::size_t at = 0; at < pixels.size();) {
        const Match match = search.longestFrom(at);
        if (before && strings.isFull()) {
            stream.put(clearCode, bits);
            strings.clear();
            bits = image.codeSize + 1;
            before.reset();
            continue;
        }
        std::uint8_t first = 0;
        int code = match.code;
        for (std::size_t i = at + match.length; i > at; --i) {
            first = image.indices[i - 1] = strings[code].index;
            code = strings[code].parent;
        }
        if (before) {
            strings.add(*before, first);
            bits += strings.count() > (1 << bits) ? 1 : 0;
        }
        stream.put(match.code, bits);
        before = match.code;
        at += match.length;
    }
    stream.put(endCode, bits);
    stream.flush();
    return image;
}

} // namespace zento
