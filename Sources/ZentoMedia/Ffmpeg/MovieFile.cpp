#include "ZentoMedia/Ffmpeg/MovieFile.h"

#include "ZentoMedia/Ffmpeg/Failure.h"

#include <utility>

namespace zento::ffmpeg {

namespace {

const char* muxerName(Container container)
{
    return container == Container::M4a ? "ipod" : "mp4";
}

} // namespace

MovieFile::MovieFile(std::filesystem::path path, Container container, int errorCode)
    : m_path(std::move(path))
    , m_container(container)
    , m_errorCode(errorCode)
    , m_file(m_path)
{
    AVFormatContext* output = nullptr;
    check(avformat_alloc_output_context2(
        &output, nullptr, muxerName(container), fileUrl(m_path).c_str()));
    m_output.reset(output);
    m_output->pb = m_file.io();
    m_output->flags |= AVFMT_FLAG_CUSTOM_IO;
}

void MovieFile::stopOn(std::stop_token stop)
{
    m_stop = std::move(stop);
    m_output->interrupt_callback = {.callback = &isStopped, .opaque = &m_stop};
}

int MovieFile::isStopped(void* token)
{
    return static_cast<const std::stop_token*>(token)->stop_requested() ? 1 : 0;
}

AVStream& MovieFile::addTrack(const TrackFormat& format)
{
    return ffmpeg::addTrack(*m_output, format);
}

void MovieFile::begin(Options& options)
{
    if (m_container == Container::Mp4)
        options.set("movflags", "+faststart");
    check(avformat_write_header(m_output.get(), options.address()));
}

void MovieFile::write(AVPacket& packet, int trackIndex, AVRational timeBase)
{
    packet.stream_index = trackIndex;
    packet.pos = -1;
    av_packet_rescale_ts(&packet, timeBase, m_output->streams[trackIndex]->time_base);
    const int written = av_write_frame(m_output.get(), &packet);
    av_packet_unref(&packet);
    check(written);
}

void MovieFile::close()
{
    const int written = av_write_trailer(m_output.get());
    m_output.reset();
    m_file.close();
    check(written);
}

void MovieFile::check(int result) const
{
    m_file.check();
    if (result < 0)
        throw failure("Could not write", m_path, result, m_errorCode);
}

} // namespace zento::ffmpeg
