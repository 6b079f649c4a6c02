#include "ZentoMedia/Ffmpeg/MovieFragment.h"

#include <cassert>

namespace zento::ffmpeg {

namespace {

constexpr std::size_t kBoxHeaderBytes = 8;
constexpr std::size_t kFullBoxHeaderBytes = 12;

constexpr std::size_t kSequenceBytes = kFullBoxHeaderBytes + 4;
constexpr std::size_t kTrackBytes = kFullBoxHeaderBytes + 4;
constexpr std::size_t kStartBytes = kFullBoxHeaderBytes + 8;
constexpr std::size_t kSampleBytes = 12;

constexpr std::uint32_t kDefaultBaseIsMoof = 0x020000;
constexpr std::uint32_t kLongTimes = 0x01000000; // version 1
constexpr std::uint32_t kOffsetDurationSizeFlags = 0x000001 | 0x000100 | 0x000200 | 0x000400;
constexpr std::uint32_t kKeyFrame = 0x02000000;   // depends on no other
constexpr std::uint32_t kOtherFrame = 0x01010000; // does, and is no place to start from

constexpr std::size_t runBytes(std::size_t sampleCount)
{
    return kFullBoxHeaderBytes + 8 + kSampleBytes * sampleCount;
}

constexpr std::size_t trackFragmentBytes(std::size_t sampleCount)
{
    return kBoxHeaderBytes + kTrackBytes + kStartBytes + runBytes(sampleCount);
}

constexpr std::size_t moofBytes(std::size_t sampleCount)
{
    return kBoxHeaderBytes + kSequenceBytes + trackFragmentBytes(sampleCount);
}

/// Bytes in the order of the network.
class Boxes {
public:
    explicit Boxes(std::size_t size) { m_bytes.reserve(size); }

    Boxes& box(std::size_t size, const char (&type)[5])
    {
        number(size);
        m_bytes.insert(m_bytes.end(), type, type + 4);
        return *this;
    }

    Boxes& number(std::uint64_t value)
    {
        assert(value >> 32U == 0);
        for (int shift = 24; shift >= 0; shift -= 8)
            m_bytes.push_back(static_cast<std::uint8_t>(value >> static_cast<unsigned>(shift)));
        return *this;
    }

    std::vector<std::uint8_t> take() { return std::move(m_bytes); }

private:
    std::vector<std::uint8_t> m_bytes;
};

} // namespace

std::int64_t fragmentHeaderSize(std::size_t sampleCount)
{
    return static_cast<std::int64_t>(moofBytes(sampleCount) + kBoxHeaderBytes);
}

std::vector<std::uint8_t>
fragmentHeader(std::uint32_t sequence, std::int64_t start, std::span<const FragmentSample> samples)
{
    const std::size_t count = samples.size();
    const auto time = static_cast<std::uint64_t>(start);
    const auto size = static_cast<std::size_t>(fragmentHeaderSize(count));
    Boxes boxes(size);
    boxes.box(moofBytes(count), "moof");
    boxes.box(kSequenceBytes, "mfhd").number(0).number(sequence);
    boxes.box(trackFragmentBytes(count), "traf");
    boxes.box(kTrackBytes, "tfhd").number(kDefaultBaseIsMoof).number(1);
    boxes.box(kStartBytes, "tfdt").number(kLongTimes).number(time >> 32U).number(time & 0xFFFFFFFF);
    boxes.box(runBytes(count), "trun").number(kOffsetDurationSizeFlags).number(count).number(size);
    std::uint64_t samplesSize = 0;
    for (const FragmentSample& sample : samples) {
        boxes.number(static_cast<std::uint64_t>(sample.duration))
            .number(static_cast<std::uint64_t>(sample.size))
            .number(sample.isKeyFrame ? kKeyFrame : kOtherFrame);
        samplesSize += static_cast<std::uint64_t>(sample.size);
    }
    boxes.box(kBoxHeaderBytes + samplesSize, "mdat");
    return boxes.take();
}

} // namespace zento::ffmpeg
