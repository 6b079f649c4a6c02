#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zento {

/// How a camera hands out its pixels, by their order in memory.
enum class CameraPixels : unsigned char {
    Bgrx, // four bytes a pixel, the last of no meaning
    Rgbx,
    Xbgr,
    Xrgb,
    Bgr, // three bytes a pixel
    Rgb,
    Yuy2, // 4:2:2, packed Y Cb Y Cr
    Uyvy, // 4:2:2, packed Cb Y Cr Y
    Nv12, // 4:2:0, a plane of luma and one of pairs
    I420, // 4:2:0, three planes
    Grey, // luma alone
    Jpeg, // a compressed picture: plane 0 alone, `size` bytes
};

enum class CameraMatrix : unsigned char {
    Bt601, // what cameras mean that do not say (USB Video Class 1.5, 3.9.2.6)
    Bt709,
};

enum class CameraRange : unsigned char { Limited, Full };

/// One picture of a camera: a view that owns nothing.
struct CameraPicture {
    struct PlaneBytes {
        const std::uint8_t* data = nullptr;
        int stride = 0; // bytes from one row to the next
    };

    CameraPixels pixels = CameraPixels::Bgrx;
    // Of Y'CbCr; a compressed picture says these and its size itself.
    CameraMatrix matrix = CameraMatrix::Bt601;
    CameraRange range = CameraRange::Limited;
    int width = 0; // pixels
    int height = 0;
    std::array<PlaneBytes, 3> planes;
    std::size_t size = 0; // bytes of a compressed picture
};

} // namespace zento
