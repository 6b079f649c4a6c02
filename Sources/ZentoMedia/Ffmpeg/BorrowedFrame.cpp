#include "ZentoMedia/Ffmpeg/BorrowedFrame.h"

#include <tuple>
#include <utility>

namespace zento::ffmpeg {

namespace {

using Owner = std::shared_ptr<const void>;

void dropOwner(void* owner, std::uint8_t* /*data*/)
{
    const std::unique_ptr<Owner> last(static_cast<Owner*>(owner));
}

template <typename Sample>
void setPlane(AVFrame& frame, int index, const Plane<const Sample>& plane)
{
    constexpr auto kSampleBytes = static_cast<std::ptrdiff_t>(sizeof(Sample));
    // An encoder never writes to a frame whose buffer is read-only.
    auto* samples = const_cast<Sample*>(plane.data);
    frame.data[index] = reinterpret_cast<std::uint8_t*>(samples);
    frame.linesize[index] = static_cast<int>(plane.stride * kSampleBytes);
}

void attachOwner(AVFrame& frame, Owner owner)
{
    auto kept = std::make_unique<Owner>(std::move(owner));
    // One byte stands for all: the planes say where the samples are, the buffer only counts.
    frame.buf[0] =
        av_buffer_create(frame.data[0], 1, &dropOwner, kept.get(), AV_BUFFER_FLAG_READONLY);
    if (frame.buf[0] == nullptr)
        throw std::bad_alloc();
    std::ignore = kept.release(); // the buffer's now
}

} // namespace

template <typename Sample>
FrameHandle borrowedFrame(
    const YuvPlanes<const Sample>& picture,
    AVPixelFormat format,
    std::shared_ptr<const void> owner,
    std::int64_t ticks)
{
    auto frame = makeFrame();
    frame->format = format;
    frame->width = picture.y.width;
    frame->height = picture.y.height;
    frame->pts = ticks;
    frame->color_primaries = AVCOL_PRI_BT709;
    frame->color_trc = AVCOL_TRC_BT709;
    frame->colorspace = AVCOL_SPC_BT709;
    frame->color_range = AVCOL_RANGE_MPEG;
    setPlane(*frame, 0, picture.y);
    setPlane(*frame, 1, picture.cb);
    setPlane(*frame, 2, picture.cr);
    attachOwner(*frame, std::move(owner));
    return frame;
}

template FrameHandle borrowedFrame(
    const YuvPlanes<const std::uint8_t>&, AVPixelFormat, std::shared_ptr<const void>, std::int64_t);
template FrameHandle borrowedFrame(
    const YuvPlanes<const std::uint16_t>&,
    AVPixelFormat,
    std::shared_ptr<const void>,
    std::int64_t);

} // namespace zento::ffmpeg
