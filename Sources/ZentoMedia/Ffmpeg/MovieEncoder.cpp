#include "ZentoMedia/Ffmpeg/MovieEncoder.h"

#include "ZentoMedia/Ffmpeg/Failure.h"
#include "ZentoMedia/Ffmpeg/GrowingMovie.h"
#include "ZentoMedia/Ffmpeg/MovieFile.h"

#include <string>
#include <utility>

namespace zento::ffmpeg {

namespace {

constexpr const char* kWriting = "Could not write";

class PlainTrackFile final : public TrackFile {
public:
    PlainTrackFile(
        const std::filesystem::path& path,
        Container container,
        const TrackFormat& format,
        int errorCode)
        : m_file(path, container, errorCode)
    {
        m_file.addTrack(format);
        Options options;
        setTimescale(options, format);
        m_file.begin(options);
    }

    void setErrorCode(int errorCode) override { m_file.setErrorCode(errorCode); }
    void write(AVPacket& packet, AVRational timeBase) override
    {
        m_file.write(packet, 0, timeBase);
    }
    void flush() override {}
    void close() override { m_file.close(); }

private:
    MovieFile m_file;
};

std::unique_ptr<TrackFile> makeTrackFile(
    const std::filesystem::path& path, MovieForm form, const TrackFormat& format, int errorCode)
{
    if (form == MovieForm::QuickTime)
        return std::make_unique<GrowingMovie>(path, format, errorCode);
    const Container container = form == MovieForm::M4a        ? Container::M4a
                                : form == MovieForm::Mp4Cache ? Container::Mp4Cache
                                                              : Container::Mp4;
    return std::make_unique<PlainTrackFile>(path, container, format, errorCode);
}

} // namespace

MovieEncoder::MovieEncoder(
    const std::filesystem::path& path,
    MovieForm form,
    CodecHandle codec,
    std::optional<std::int64_t> frameDuration,
    int errorCode)
    : m_path(path)
    , m_codec(std::move(codec))
    , m_frameDuration(frameDuration)
    , m_file(makeTrackFile(path, form, trackFormat(*m_codec), errorCode))
{
}

void MovieEncoder::encode(const AVFrame& frame, int errorCode)
{
    send(&frame, errorCode);
}

void MovieEncoder::drain(int errorCode)
{
    send(nullptr, errorCode);
}

void MovieEncoder::settle(CodecHandle next, int errorCode)
{
    drain(errorCode);
    m_codec = std::move(next);
    m_file->flush();
}

void MovieEncoder::send(const AVFrame* frame, int errorCode)
{
    m_file->setErrorCode(errorCode);
    const int sent = avcodec_send_frame(m_codec.get(), frame);
    if (sent < 0)
        throw failure(kWriting, m_path, sent, errorCode);
    for (;;) {
        const int received = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF)
            return;
        if (received < 0)
            throw failure(kWriting, m_path, received, errorCode);
        writePacket();
    }
}

void MovieEncoder::writePacket()
{
    m_packet->duration = m_frameDuration.value_or(m_packet->duration);
    m_file->write(*m_packet, m_codec->time_base);
    ++m_framesWritten;
}

void MovieEncoder::close(int errorCode)
{
    m_file->setErrorCode(errorCode);
    m_file->close();
}

CodecHandle
makeEncoder(const char* name, const std::filesystem::path& path, AVRational timeBase, int errorCode)
{
    silenceLog();
    const AVCodec* encoder = avcodec_find_encoder_by_name(name);
    if (encoder == nullptr)
        throw Error(
            errorCode, "Could not write " + path.string() + ": no encoder " + std::string(name));
    auto codec = allocated(CodecHandle(avcodec_alloc_context3(encoder)));
    codec->time_base = timeBase;
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    return codec;
}

CodecHandle makePictureEncoder(
    const char* name,
    const std::filesystem::path& path,
    int width,
    int height,
    AVRational timeBase,
    int errorCode)
{
    if (width <= 0 || height <= 0 || width % 2 != 0 || height % 2 != 0)
        throw Error(
            errorCode,
            "Could not write " + path.string() + ": a movie cannot be " + std::to_string(width)
                + " × " + std::to_string(height) + " pixels");
    CodecHandle codec = makeEncoder(name, path, timeBase, errorCode);
    codec->width = width;
    codec->height = height;
    codec->sample_aspect_ratio = {1, 1};
    codec->color_primaries = AVCOL_PRI_BT709;
    codec->color_trc = AVCOL_TRC_BT709;
    codec->colorspace = AVCOL_SPC_BT709;
    codec->color_range = AVCOL_RANGE_MPEG;
    codec->chroma_sample_location = AVCHROMA_LOC_LEFT;
    return codec;
}

void openEncoder(
    AVCodecContext& codec, const std::filesystem::path& path, Options& options, int errorCode)
{
    const int opened = avcodec_open2(&codec, nullptr, options.address());
    if (opened < 0)
        throw failure(kWriting, path, opened, errorCode);
}

} // namespace zento::ffmpeg
