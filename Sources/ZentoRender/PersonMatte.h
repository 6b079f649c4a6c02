#pragma once

#include "ZentoCore/Plane.h"
#include "ZentoImaging/Picture.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zento {

/// Where in a picture a person is: 255 on the person, 0 elsewhere, soft in between.
struct Matte {
    int width = 0; // samples
    int height = 0;
    std::vector<std::uint8_t> samples;

    Plane<const std::uint8_t> plane() const { return {samples.data(), width, height, width}; }
};

/// Finds the person in a webcam's picture with a small network, which is built into the program.
///
/// Every picture is looked at on its own, without a memory of the one before, so that a frame looks
/// the same wherever a film is entered. 288 × 288 takes about 15 ms.
///
/// Threading: one thread at a time. OpenCV is told to compute on the caller's thread alone and to
/// keep its messages to itself, both for the whole process: the network gains nothing from a second
/// thread, and OpenCV's pool would compete with the encoder's.
class PersonMatte {
public:
    /// The longer side of what the network sees, pixels. Pictures of that size are not scaled.
    static constexpr int kWorkingSize = 288;

    PersonMatte();
    ~PersonMatte();
    PersonMatte(PersonMatte&&) noexcept;
    PersonMatte& operator=(PersonMatte&&) noexcept;

    /// A matte of the picture's size. Nothing for a picture with a side of 8 pixels or less, and
    /// where the network fails.
    std::optional<Matte> matte(const ConstPictureView& picture);

private:
    struct Network;
    std::unique_ptr<Network> m_network; // null if it could not be loaded
};

} // namespace zento
