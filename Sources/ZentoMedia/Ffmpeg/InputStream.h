#pragma once

#include "ZentoMedia/AudioReader.h"
#include "ZentoMedia/Ffmpeg/Handles.h"

#include <cstdint>

namespace zento::ffmpeg {

/// Bytes for the library to read that no file holds. It cannot go back in them; what the source
/// throws ends them.
///
/// Outlives the input that reads it. Threading: that of the input.
class InputStream {
public:
    explicit InputStream(ByteSource source);
    ~InputStream();
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    AVIOContext& context() const { return *m_context; }

private:
    static int read(void* self, std::uint8_t* into, int length) noexcept;

    ByteSource m_source;
    bool m_isOver = false;
    AVIOContext* m_context = nullptr;
};

} // namespace zento::ffmpeg
