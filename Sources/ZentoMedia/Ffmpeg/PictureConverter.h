#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/VideoFrame.h"

#include <cstdint>
#include <optional>

namespace zento::ffmpeg {

/// Makes `VideoFrame`s of the library's: by reference where the samples are already what a
/// `VideoFrame` may hold, else by converting them.
///
/// Threading: used by one thread at a time.
class PictureConverter {
public:
    /// Nothing for a picture that cannot be converted.
    std::optional<VideoFrame> convert(FrameHandle picture, double time, std::uint64_t identity);

private:
    /// What a picture's samples mean.
    struct Encoding {
        int width = 0;
        int height = 0;
        AVPixelFormat format = AV_PIX_FMT_NONE;
        AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
        bool isFullRange = false;
        bool isChromaCentred = false;

        bool operator==(const Encoding&) const = default;
    };

    static Encoding encodingOf(const AVFrame& picture);
    static bool isAsWanted(const Encoding& encoding);
    FrameHandle scaled(const AVFrame& picture, const Encoding& encoding);
    bool prepareScaler(const Encoding& encoding, AVPixelFormat target);

    ScalerHandle m_scaler;
    Encoding m_scalerInput; // what `m_scaler` was made for
};

} // namespace zento::ffmpeg
