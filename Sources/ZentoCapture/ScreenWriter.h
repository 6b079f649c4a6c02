#pragma once

#include "ZentoCore/Plane.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace zento {

enum class AppendResult : unsigned char { Appended, NotReady };

/// The movie a recording's frames go to, in real time.
///
/// Threading: one thread at a time.
class ScreenWriter {
public:
    virtual ~ScreenWriter() = default; // without `finish` the movie is abandoned

    /// Never waits for the disk or for the encoder. `time` is in seconds from the start of the
    /// movie and ascends; the picture has the writer's size.
    virtual AppendResult append(const BgraView& picture, double time) = 0;

    /// Whether no picture will ever be taken again; `finish` then says why.
    virtual bool hasFailed() const { return false; }

    /// Writes what is pending and closes the file. Throws `Error`, naming the file.
    virtual void finish() = 0;
};

/// Makes the writer of a new movie; throws `Error`.
using ScreenWriterFactory = std::function<std::unique_ptr<ScreenWriter>(
    const std::filesystem::path& path, int width, int height)>;

/// ProRes 422 LT in QuickTime: cheap to code, and every frame stands alone, so editing and
/// scrubbing later read a file with no long groups of frames.
std::unique_ptr<ScreenWriter>
makeScreenWriter(const std::filesystem::path& path, int width, int height);

} // namespace zento
