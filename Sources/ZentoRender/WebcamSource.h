#pragma once

#include "ZentoCore/EditPlan.h"
#include "ZentoMedia/VideoFrame.h"
#include "ZentoRender/SourceReader.h"

#include <filesystem>
#include <optional>

namespace zento {

/// The webcam's movie of a recording, on the recording's clock. Whatever is wrong with it, a film
/// is made: without the webcam.
///
/// Threading: one thread at a time.
class WebcamSource {
public:
    /// The plan's file is a path, or else the name of a file in the folder of the recording. Never
    /// throws; without a plan there is no webcam.
    WebcamSource(const std::optional<WebcamPlan>& plan, const std::filesystem::path& bundle);

    /// The webcam at a time of the recording, in seconds; times only go forwards. Before the
    /// webcam's start its first picture.
    std::optional<VideoFrame> frame(double sourceTime);

private:
    double m_offset = 0; // seconds
    std::optional<SourceReader> m_reader;
};

} // namespace zento
