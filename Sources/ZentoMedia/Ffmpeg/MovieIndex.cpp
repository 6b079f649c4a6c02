#include "ZentoMedia/Ffmpeg/MovieIndex.h"

#include "ZentoMedia/Ffmpeg/Failure.h"

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <utility>

namespace zento::ffmpeg {

namespace {

// Beyond the end of any file. The box does not depend on where it lies.
constexpr std::int64_t kIndexPlace = std::int64_t{1} << 60;

constexpr int kBufferBytes = 64 << 10;

} // namespace

MovieIndex::MovieIndex(const TrackFormat& format, std::filesystem::path path, int errorCode)
    : m_path(std::move(path))
    , m_errorCode(errorCode)
    , m_timeBase(format.timeBase)
{
    AVFormatContext* output = nullptr;
    check(avformat_alloc_output_context2(&output, nullptr, "mov", nullptr));
    m_output.reset(output);
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(kBufferBytes));
    if (buffer != nullptr)
        m_io = avio_alloc_context(
            buffer, kBufferBytes, 1, this, nullptr, &writeCallback, &seekCallback);
    if (m_io == nullptr) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    m_io->direct = 1; // the samples are not to be copied on their way to nowhere
    m_output->pb = m_io;
    m_output->flags |= AVFMT_FLAG_CUSTOM_IO;
    addTrack(*m_output, format);
    Options options;
    setTimescale(options, format);
    check(avformat_write_header(m_output.get(), options.address()));
}

MovieIndex::~MovieIndex()
{
    m_output.reset();
    if (m_io != nullptr)
        av_freep(static_cast<void*>(&m_io->buffer));
    avio_context_free(&m_io);
}

std::int64_t
MovieIndex::add(AVPacket& packet, std::int64_t offset, std::vector<std::uint8_t>* bytes)
{
    avio_seek(m_io, offset, SEEK_SET);
    m_kept = bytes;
    m_keptFrom = offset - (bytes != nullptr ? static_cast<std::int64_t>(bytes->size()) : 0);
    packet.stream_index = 0;
    check(av_write_frame(m_output.get(), &packet));
    m_kept = nullptr;
    ++m_sampleCount;
    return avio_tell(m_io) - offset;
}

std::vector<std::uint8_t> MovieIndex::finish()
{
    std::vector<std::uint8_t> bytes;
    avio_seek(m_io, kIndexPlace, SEEK_SET);
    m_kept = &bytes;
    m_keptFrom = kIndexPlace;
    const int written = av_write_trailer(m_output.get());
    avio_flush(m_io);
    m_kept = nullptr;
    check(written);
    return bytes;
}

int MovieIndex::writeCallback(void* index, std::uint8_t* bytes, int count)
{
    auto& self = *static_cast<MovieIndex*>(index);
    const std::int64_t begin = self.m_position - self.m_keptFrom;
    self.m_position += count;
    if (self.m_kept != nullptr && begin >= 0) {
        const auto end = static_cast<std::size_t>(begin + count);
        self.m_kept->resize(std::max(self.m_kept->size(), end));
        std::copy_n(bytes, count, self.m_kept->begin() + begin);
    }
    return count;
}

std::int64_t MovieIndex::seekCallback(void* index, std::int64_t offset, int whence)
{
    auto& self = *static_cast<MovieIndex*>(index);
    if (whence != SEEK_SET)
        return AVERROR(EINVAL);
    self.m_position = offset;
    return offset;
}

void MovieIndex::check(int result) const
{
    if (result < 0)
        throw failure("Could not write", m_path, result, m_errorCode);
}

} // namespace zento::ffmpeg
