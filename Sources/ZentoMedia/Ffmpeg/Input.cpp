#include "ZentoMedia/Ffmpeg/Input.h"

#include "ZentoMedia/Ffmpeg/Failure.h"

#include <new>
#include <string>

namespace zento::ffmpeg {

namespace {

constexpr const char* kReading = "Could not read";

/// `protocols`: all that may be opened on the way. A list of addresses is not a recording.
InputHandle open(
    const std::filesystem::path& path,
    const std::string& url,
    const char* protocols,
    AVIOContext* bytes = nullptr)
{
    silenceLog();
    Options options;
    options.set("protocol_whitelist", protocols);
    AVFormatContext* input = nullptr;
    if (bytes != nullptr) {
        input = avformat_alloc_context();
        if (input == nullptr)
            throw std::bad_alloc();
        input->pb = bytes;
    }
    const int opened = avformat_open_input(&input, url.c_str(), nullptr, options.address());
    if (opened < 0)
        throw failure(kReading, path, opened, ErrorCode::kReadingFailed);
    InputHandle handle(input);
    const int found = avformat_find_stream_info(input, nullptr);
    if (found < 0)
        throw failure(kReading, path, found, ErrorCode::kReadingFailed);
    return handle;
}

} // namespace

InputHandle openInput(const std::filesystem::path& path)
{
    return open(path, fileUrl(path), "file");
}

InputHandle openInput(const std::filesystem::path& path, std::int64_t size)
{
    const std::string range = "subfile,,start,0,end," + std::to_string(size) + ",,:";
    return open(path, range + fileUrl(path), "file,subfile");
}

InputHandle openInput(AVIOContext& bytes, const std::filesystem::path& name)
{
    return open(name, {}, "none", &bytes);
}

bool isPictures(const AVStream& track)
{
    // The cover of a song is a video track of one picture to this library.
    return track.codecpar->codec_type == AVMEDIA_TYPE_VIDEO
           && (track.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}

bool isSound(const AVStream& track)
{
    return track.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
}

CodecHandle makeDecoder(const AVStream& track, const std::filesystem::path& path)
{
    const AVCodec* decoder = avcodec_find_decoder(track.codecpar->codec_id);
    if (decoder == nullptr)
        throw failure(kReading, path, AVERROR_DECODER_NOT_FOUND, ErrorCode::kReadingFailed);
    auto codec = allocated(CodecHandle(avcodec_alloc_context3(decoder)));
    const int copied = avcodec_parameters_to_context(codec.get(), track.codecpar);
    if (copied < 0)
        throw failure(kReading, path, copied, ErrorCode::kReadingFailed);
    codec->pkt_timebase = track.time_base;
    return codec;
}

void openDecoder(AVCodecContext& codec, const std::filesystem::path& path)
{
    const int opened = avcodec_open2(&codec, nullptr, nullptr);
    if (opened < 0)
        throw failure(kReading, path, opened, ErrorCode::kReadingFailed);
}

bool readPacket(AVFormatContext& input, int trackIndex, AVPacket& packet)
{
    do {
        av_packet_unref(&packet);
        if (av_read_frame(&input, &packet) < 0)
            return false;
    } while (packet.stream_index != trackIndex);
    return true;
}

} // namespace zento::ffmpeg
