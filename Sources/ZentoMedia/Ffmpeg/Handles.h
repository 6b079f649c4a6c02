#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <new>

namespace zento::ffmpeg {

/// Owners of the C library's objects. Each frees what it holds the way the library asks for.
struct Release {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
    void operator()(SwrContext* resampler) const { swr_free(&resampler); }
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
};

struct ReleaseInput {
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
};

struct ReleaseOutput {
    void operator()(AVFormatContext* output) const { avformat_free_context(output); }
};

using CodecHandle = std::unique_ptr<AVCodecContext, Release>;
using FrameHandle = std::unique_ptr<AVFrame, Release>;
using PacketHandle = std::unique_ptr<AVPacket, Release>;
using ParametersHandle = std::unique_ptr<AVCodecParameters, Release>;
using ResamplerHandle = std::unique_ptr<SwrContext, Release>;
using ScalerHandle = std::unique_ptr<SwsContext, Release>;
using InputHandle = std::unique_ptr<AVFormatContext, ReleaseInput>;
using OutputHandle = std::unique_ptr<AVFormatContext, ReleaseOutput>;

/// A name-value list for functions that take what they know of it.
class Options {
public:
    Options() = default;
    ~Options() { av_dict_free(&m_entries); }
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;

    void set(const char* name, const char* value) { av_dict_set(&m_entries, name, value, 0); }
    void set(const char* name, int value) { av_dict_set_int(&m_entries, name, value, 0); }
    AVDictionary** address() { return &m_entries; }

private:
    AVDictionary* m_entries = nullptr;
};

/// `handle` unless it is empty: the library gives null only when memory has run out.
template <typename Handle>
Handle allocated(Handle handle)
{
    if (!handle)
        throw std::bad_alloc();
    return handle;
}

inline FrameHandle makeFrame()
{
    return allocated(FrameHandle(av_frame_alloc()));
}

inline PacketHandle makePacket()
{
    return allocated(PacketHandle(av_packet_alloc()));
}

} // namespace zento::ffmpeg
