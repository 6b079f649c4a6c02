#include "ZentoMedia/WavWriter.h"

#include "ZentoCore/Error.h"

#include <fcntl.h>

#include <algorithm>
#include <bit>
#include <cassert>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace zento {

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr int kInteger = 1; // the format tags of a "fmt " chunk
constexpr int kFloat = 3;

/// Numbers of the Resource Interchange File Format are little-endian.
template <typename Integer>
void put(std::string& bytes, std::uint64_t value)
{
    const auto narrow = static_cast<Integer>(value);
    bytes.append(reinterpret_cast<const char*>(&narrow), sizeof narrow);
}

void beginChunk(std::string& bytes, const char* name, std::uint32_t size)
{
    bytes.append(name, 4);
    put<std::uint32_t>(bytes, size);
}

std::uint64_t bytesPerSample(const WavFormat& format)
{
    return format.samples == WavSamples::Float32 ? sizeof(float) : sizeof(std::int16_t);
}

std::string formatChunks(const WavFormat& format, std::uint64_t frameCount)
{
    const bool isFloat = format.samples == WavSamples::Float32;
    const auto channels = static_cast<std::uint64_t>(format.channelCount);
    const auto rate = static_cast<std::uint64_t>(format.sampleRate);
    const std::uint64_t sampleSize = bytesPerSample(format);
    std::string bytes;
    beginChunk(bytes, "fmt ", isFloat ? 18 : 16);
    put<std::uint16_t>(bytes, isFloat ? kFloat : kInteger);
    put<std::uint16_t>(bytes, channels);
    put<std::uint32_t>(bytes, rate);
    put<std::uint32_t>(bytes, rate * channels * sampleSize);
    put<std::uint16_t>(bytes, channels * sampleSize);
    put<std::uint16_t>(bytes, 8 * sampleSize);
    if (isFloat) {
        put<std::uint16_t>(bytes, 0); // no extension follows
        beginChunk(bytes, "fact", 4);
        put<std::uint32_t>(
            bytes, std::min<std::uint64_t>(frameCount, std::numeric_limits<std::uint32_t>::max()));
    }
    return bytes;
}

/// Room for the sizes that 32 bits cannot hold, or those sizes.
std::string sizesChunk(
    bool isLong, std::uint64_t fileBytes, std::uint64_t sampleBytes, std::uint64_t frameCount)
{
    std::string bytes;
    beginChunk(bytes, isLong ? "ds64" : "JUNK", 28);
    for (const std::uint64_t size : {fileBytes, sampleBytes, frameCount})
        put<std::uint64_t>(bytes, isLong ? size : 0);
    put<std::uint32_t>(bytes, 0); // no table of further sizes
    return bytes;
}

std::int16_t sample16(float sample)
{
    return static_cast<std::int16_t>(std::lround(std::clamp(sample, -1.0F, 1.0F) * 32767));
}

/// All of the bytes, at `offset`.
void writeAt(
    int file,
    const void* bytes,
    std::size_t count,
    std::uint64_t offset,
    const std::filesystem::path& path)
{
    const auto* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = ::pwrite(file, next, count, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw systemError("cannot write", path.string(), errno);
        next += written;
        offset += static_cast<std::uint64_t>(written);
        count -= static_cast<std::size_t>(written);
    }
}

} // namespace

std::string wavHeader(const WavFormat& format, std::uint64_t sampleBytes)
{
    constexpr std::uint32_t kElsewhere = std::numeric_limits<std::uint32_t>::max();
    constexpr std::uint64_t kSizesBytes = 36;
    const std::uint64_t frameBytes =
        static_cast<std::uint64_t>(format.channelCount) * bytesPerSample(format);
    const std::uint64_t frameCount = sampleBytes / frameBytes;
    const std::string chunks = formatChunks(format, frameCount);
    const std::uint64_t fileBytes = 4 + kSizesBytes + chunks.size() + 8 + sampleBytes;
    const bool isLong = fileBytes >= kElsewhere;
    std::string bytes;
    beginChunk(
        bytes,
        isLong ? "RF64" : "RIFF",
        isLong ? kElsewhere : static_cast<std::uint32_t>(fileBytes));
    bytes += "WAVE" + sizesChunk(isLong, fileBytes, sampleBytes, frameCount) + chunks;
    beginChunk(bytes, "data", isLong ? kElsewhere : static_cast<std::uint32_t>(sampleBytes));
    return bytes;
}

WavWriter::WavWriter(std::filesystem::path path, const WavFormat& format)
    : m_path(std::move(path))
    , m_file(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644))
    , m_format(format)
{
    if (m_file.get() < 0)
        throw systemError("cannot write", m_path.string(), errno);
    updateHeader();
}

std::size_t WavWriter::frameBytes() const
{
    return static_cast<std::size_t>(m_format.channelCount) * bytesPerSample(m_format);
}

template <typename Sample, typename Convert>
void WavWriter::interleave(AudioBlock block, Convert convert)
{
    const std::size_t length = block.front().size();
    m_interleaved.resize(length * frameBytes());
    std::byte* target = m_interleaved.data();
    for (std::size_t i = 0; i < length; ++i)
        for (const std::span<const float> channel : block) {
            const Sample sample = convert(channel[i]);
            std::memcpy(target, &sample, sizeof sample);
            target += sizeof sample;
        }
}

void WavWriter::append(AudioBlock block)
{
    assert(block.size() == static_cast<std::size_t>(m_format.channelCount));
    if (m_format.samples == WavSamples::Float32)
        interleave<float>(block, [](float sample) { return sample; });
    else
        interleave<std::int16_t>(block, sample16);
    writeAt(
        m_file.get(),
        m_interleaved.data(),
        m_interleaved.size(),
        m_headerBytes + m_sampleBytes,
        m_path);
    m_sampleBytes += m_interleaved.size();
    const std::uint64_t second = static_cast<std::uint64_t>(m_format.sampleRate) * frameBytes();
    if (m_sampleBytes - m_toldBytes >= second)
        updateHeader();
}

void WavWriter::finish()
{
    updateHeader();
    if (::close(m_file.release()) != 0)
        throw systemError("cannot write", m_path.string(), errno);
}

void WavWriter::updateHeader()
{
    const std::string header = wavHeader(m_format, m_sampleBytes);
    writeAt(m_file.get(), header.data(), header.size(), 0, m_path);
    m_headerBytes = header.size();
    m_toldBytes = m_sampleBytes;
}

} // namespace zento
