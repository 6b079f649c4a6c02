#include "ZentoMedia/Ffmpeg/FrameBuffers.h"

#include "ZentoCore/PictureMemory.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <array>
#include <new>

namespace zento::ffmpeg {

namespace {

constexpr int kAlignment = 64; // bytes, of each row

void freeBuffer(void*, std::uint8_t* data)
{
    FreePictureMemory()(reinterpret_cast<std::byte*>(data));
}

AVBufferRef* allocateBuffer(void*, std::size_t size)
try {
    PictureMemory memory = allocatePicture(size);
    auto* data = reinterpret_cast<std::uint8_t*>(memory.get());
    AVBufferRef* buffer = av_buffer_create(data, size, freeBuffer, nullptr, 0);
    if (buffer != nullptr)
        memory.release(); // NOLINT(bugprone-unused-return-value): the buffer's now
    return buffer;
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace

int FrameBuffers::lend(AVCodecContext& codec, AVFrame& frame)
{
    int width = frame.width;
    int height = frame.height;
    std::array<int, AV_NUM_DATA_POINTERS> unused{};
    avcodec_align_dimensions2(&codec, &width, &height, unused.data());
    // The decoder writes whole blocks, up to the size it asks for; its vectors a little beyond.
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const int size = av_image_get_buffer_size(format, width, height, kAlignment);
    if (size < 0)
        return size;
    const std::size_t wanted = static_cast<std::size_t>(size) + kAlignment;
    if (!m_pool || m_size != wanted) {
        m_pool.reset(av_buffer_pool_init2(wanted, nullptr, allocateBuffer, nullptr));
        m_size = wanted;
    }
    frame.buf[0] = m_pool ? av_buffer_pool_get(m_pool.get()) : nullptr;
    if (frame.buf[0] == nullptr)
        return AVERROR(ENOMEM);
    av_image_fill_arrays(
        frame.data, frame.linesize, frame.buf[0]->data, format, width, height, kAlignment);
    frame.extended_data = frame.data;
    return 0;
}

int takeBuffer(AVCodecContext* codec, AVFrame* frame, int flags)
{
    if ((codec->codec->capabilities & AV_CODEC_CAP_DR1) == 0)
        return avcodec_default_get_buffer2(codec, frame, flags);
    return static_cast<FrameBuffers*>(codec->opaque)->lend(*codec, *frame);
}

} // namespace zento::ffmpeg
