#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zento::test {

enum class FakeCameraForm { I420, Jpeg };

/// A camera of the sound service's that shows what a function makes, at a steady rate.
///
/// Threading: the function runs on a thread of the camera's.
class FakeCamera {
public:
    struct Format {
        FakeCameraForm form = FakeCameraForm::I420;
        int width = 1280;
        int height = 720;
        int rate = 30; // pictures a second
    };

    /// The bytes of picture `index`, taken at `time` in seconds of CLOCK_MONOTONIC.
    using Painter = std::function<std::vector<std::uint8_t>(int index, double time)>;

    /// Returns when the service lists it. It shows nothing until somebody looks.
    FakeCamera(std::string name, const Format& format, Painter painter);
    ~FakeCamera(); // unplugs it

    int shown() const; // pictures

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento::test
