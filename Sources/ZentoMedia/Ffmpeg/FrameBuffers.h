#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"

#include <cstddef>
#include <memory>

namespace zento::ffmpeg {

/// Where a decoder that threads by slice puts its pictures: memory that is used again, taken from
/// allocatePicture(). A picture may outlive what lent it.
///
/// Threading: one at a time.
class FrameBuffers {
public:
    /// Gives `frame`, whose format and size are set, its planes. An AVERROR on failure.
    int lend(AVCodecContext& codec, AVFrame& frame);

private:
    struct ReleasePool {
        void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
    };
    std::unique_ptr<AVBufferPool, ReleasePool> m_pool;
    std::size_t m_size = 0; // of the pool's buffers
};

/// A codec's `get_buffer2`, for one whose `opaque` is the FrameBuffers to use.
int takeBuffer(AVCodecContext* codec, AVFrame* frame, int flags);

} // namespace zento::ffmpeg
