#include "ZentoMedia/Ffmpeg/InputStream.h"

#include <cstddef>
#include <new>
#include <span>
#include <utility>

namespace zento::ffmpeg {

namespace {

constexpr int kBufferSize = 16 * 1024; // bytes

} // namespace

InputStream::InputStream(ByteSource source)
    : m_source(std::move(source))
{
    auto* const buffer = static_cast<unsigned char*>(av_malloc(kBufferSize));
    if (buffer == nullptr)
        throw std::bad_alloc();
    m_context = avio_alloc_context(buffer, kBufferSize, 0, this, &read, nullptr, nullptr);
    if (m_context == nullptr) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    m_context->seekable = 0;
}

InputStream::~InputStream()
{
    av_freep(static_cast<void*>(&m_context->buffer)); // the library may have made another one
    avio_context_free(&m_context);
}

int InputStream::read(void* self, std::uint8_t* into, int length) noexcept
{
    auto& stream = *static_cast<InputStream*>(self);
    try {
        const std::span room(reinterpret_cast<char*>(into), static_cast<std::size_t>(length));
        const std::size_t count = stream.m_isOver ? 0 : stream.m_source(room);
        stream.m_isOver = count == 0;
        return count == 0 ? AVERROR_EOF : static_cast<int>(count);
    } catch (...) { // must not pass through the library
        stream.m_isOver = true;
        return AVERROR_EXTERNAL;
    }
}

} // namespace zento::ffmpeg
