#include "ZentoMedia/Ffmpeg/GrowingMovie.h"

#include "ZentoMedia/Ffmpeg/Failure.h"
#include "ZentoMedia/Ffmpeg/MovieFragment.h"

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/intreadwrite.h>
#include <libavutil/mathematics.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <array>
#include <cassert>
#include <memory>
#include <utility>

namespace zento::ffmpeg {

namespace {

// A cut costs what the last fragment would have held. Smaller ones make longer movies: 0.5 s are
// 60 bytes a frame at 60 frames a second.
constexpr AVRational kFragmentSeconds{1, 2};
constexpr std::int64_t kFragmentBytes = 4 << 20;

// The index of a movie grows by a duration (8 bytes), a size (4) and, where every picture is a
// chunk of its own, a chunk's offset (8) and description (12); a fragment's by 16 bytes a picture.
constexpr std::int64_t kIndexBytesPerFrame = 32;
constexpr std::int64_t kFragmentBytesPerFrame = 16;
constexpr std::int64_t kIndexBaseBytes = 16 << 10;

constexpr int kBoxHeaderBytes = 8;
constexpr int kLargeBoxHeaderBytes = 16;

struct FreeAllocated {
    void operator()(std::uint8_t* bytes) const { av_free(bytes); }
};

/// "ftyp" and the index of a movie that has no samples of its own, only fragments.
std::vector<std::uint8_t>
emptyMovie(const TrackFormat& format, const std::filesystem::path& path, int errorCode)
{
    constexpr const char* kWriting = "Could not write";
    AVFormatContext* context = nullptr;
    const int made = avformat_alloc_output_context2(&context, nullptr, "mov", nullptr);
    if (made < 0)
        throw failure(kWriting, path, made, errorCode);
    const OutputHandle output(context);
    output->flags |= AVFMT_FLAG_CUSTOM_IO;
    addTrack(*output, format);
    Options options;
    setTimescale(options, format);
    options.set("movflags", "empty_moov+default_base_moof");
    if (avio_open_dyn_buf(&output->pb) < 0)
        throw std::bad_alloc();
    const int written = avformat_write_header(output.get(), options.address());
    std::uint8_t* bytes = nullptr;
    const int count = avio_close_dyn_buf(std::exchange(output->pb, nullptr), &bytes);
    const std::unique_ptr<std::uint8_t, FreeAllocated> owner(bytes);
    if (written < 0)
        throw failure(kWriting, path, written, errorCode);
    return {bytes, bytes + count};
}

void writeAt(OutputFile& file, std::int64_t offset, const std::uint8_t* bytes, std::size_t count)
{
    avio_seek(file.io(), offset, SEEK_SET);
    avio_write(file.io(), bytes, static_cast<int>(count));
    file.sync();
}

} // namespace

GrowingMovie::GrowingMovie(
    const std::filesystem::path& path, const TrackFormat& format, int errorCode)
    : m_file(path)
    , m_timeBase(format.timeBase)
    , m_index(format, path, errorCode)
{
    const std::vector<std::uint8_t> empty = emptyMovie(format, path, errorCode);
    m_dataBegin = AV_RB32(empty.data()); // the size of the first box
    append(empty);
}

void GrowingMovie::append(const std::vector<std::uint8_t>& bytes)
{
    avio_write(m_file.io(), bytes.data(), static_cast<int>(bytes.size()));
}

void GrowingMovie::write(AVPacket& packet, AVRational timeBase)
{
    keepRoom(packet.size);
    PacketHandle pending = makePacket();
    av_packet_move_ref(pending.get(), &packet);
    av_packet_rescale_ts(pending.get(), timeBase, m_timeBase);
    pending->stream_index = 0;
    pending->pos = -1;
    m_pendingBytes += pending->size;
    assert(pending->pts == pending->dts);
    const std::int64_t end = pending->dts;
    m_pending.push_back(std::move(pending));
    const bool isLong =
        av_compare_ts(end - m_pending.front()->dts, m_timeBase, 1, kFragmentSeconds) >= 0;
    const bool isFirst = m_sequence == 0; // without one the file is no movie
    if (isFirst || isLong || m_pendingBytes >= kFragmentBytes)
        flush();
}

void GrowingMovie::keepRoom(std::int64_t packetBytes)
{
    const auto frames = static_cast<std::int64_t>(m_pending.size()) + 1;
    m_file.keepRoom(
        m_pendingBytes + packetBytes + kIndexBaseBytes + kFragmentBytesPerFrame * frames
        + kIndexBytesPerFrame * (m_index.sampleCount() + frames));
}

void GrowingMovie::flush()
{
    if (m_pending.empty())
        return;
    std::int64_t place = avio_tell(m_file.io()) + fragmentHeaderSize(m_pending.size());
    std::vector<FragmentSample> samples;
    m_samples.clear();
    for (std::size_t i = 0; i < m_pending.size(); ++i) {
        AVPacket& packet = *m_pending[i];
        const bool isLast = i + 1 == m_pending.size();
        samples.push_back(
            {.duration = isLast ? packet.duration : m_pending[i + 1]->dts - packet.dts,
             .size = m_index.add(packet, place, &m_samples),
             .isKeyFrame = (packet.flags & AV_PKT_FLAG_KEY) != 0});
        place += samples.back().size;
    }
    append(fragmentHeader(++m_sequence, m_pending.front()->dts, samples));
    append(m_samples);
    avio_flush(m_file.io());
    m_file.check();
    m_pending.clear();
    m_pendingBytes = 0;
    m_file.syncSoon();
}

void GrowingMovie::close()
{
    flush();
    const std::int64_t end = avio_tell(m_file.io());
    seal(m_file, m_dataBegin, end, m_index.finish());
    m_file.close();
}

void seal(
    OutputFile& file,
    std::int64_t dataBegin,
    std::int64_t dataEnd,
    const std::vector<std::uint8_t>& index)
{
    writeAt(file, dataEnd, index.data(), index.size());
    // It takes the place of the empty index's header and a little more, which nobody reads again.
    std::array<std::uint8_t, kLargeBoxHeaderBytes> header{0, 0, 0, 1, 'm', 'd', 'a', 't'};
    AV_WB64(header.data() + kBoxHeaderBytes, static_cast<std::uint64_t>(dataEnd - dataBegin));
    writeAt(file, dataBegin, header.data(), header.size());
}

} // namespace zento::ffmpeg
