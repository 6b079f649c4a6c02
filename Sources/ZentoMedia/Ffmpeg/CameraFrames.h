#pragma once

#include "ZentoMedia/CameraPicture.h"
#include "ZentoMedia/Ffmpeg/Handles.h"

namespace zento::ffmpeg {

/// Makes the library's frames of a camera's pictures.
///
/// Threading: used by one thread at a time.
class CameraFrames {
public:
    /// Refers to the picture's samples where they are not compressed: good for as long as they are.
    /// Empty for a compressed picture that is damaged.
    FrameHandle frame(const CameraPicture& picture);

private:
    FrameHandle decoded(const CameraPicture& picture);

    CodecHandle m_decoder; // made for the first compressed picture
    PacketHandle m_packet = makePacket();
};

/// Cuts off what a frame has beyond the shape `width` : `height`, from both sides alike. The
/// samples stay where they are.
void cropToShape(AVFrame& frame, int width, int height);

} // namespace zento::ffmpeg
