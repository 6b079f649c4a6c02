#pragma once

#include "ZentoMedia/Ffmpeg/Handles.h"
#include "ZentoMedia/VideoFrame.h"

#include <cstdint>
#include <optional>

namespace zento::ffmpeg {

/// Makes `VideoFrame`s of the library's: by reference where the samples are already what a
/// `VideoFrame` may hold, else by converting them. One made for a size scales every picture to it,
/// and what it gives never refers to what it was given.
///
/// Threading: used by one thread at a time.
class PictureConverter {
public:
    PictureConverter() = default;
    explicit PictureConverter(VideoSize size)
        : m_size(size)
    {
    }

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
    bool isAsWanted(const Encoding& encoding) const;
    FrameHandle scaled(const AVFrame& picture, const Encoding& encoding);
    bool prepareScaler(const Encoding& encoding, AVPixelFormat target);

    std::optional<VideoSize> m_size; // absent: as each picture has it
    ScalerHandle m_scaler;
    Encoding m_scalerInput; // what `m_scaler` was made for
};

} // namespace zento::ffmpeg
