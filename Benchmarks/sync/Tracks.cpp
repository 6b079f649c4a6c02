#include "Tracks.h"

#include "TestSupport/Sounds.h"
#include "ZentoMedia/AudioReader.h"
#include "ZentoMedia/VideoDecoder.h"

#include <cmath>
#include <cstddef>

namespace zento {

namespace {

/// Of a pixel in the middle, of full scale.
double brightness(const VideoFrame& frame)
{
    const int x = frame.width() / 2;
    const int y = frame.height() / 2;
    return frame.bitDepth() == 8 ? frame.planes8().y.row(y)[x] / 255.0
                                 : frame.planes10().y.row(y)[x] / 1023.0;
}

} // namespace

std::vector<double> flashes(const std::filesystem::path& movie)
{
    std::vector<double> result;
    bool wasBright = true; // a movie that begins bright begins within a flash
    VideoDecoder decoder(movie);
    while (const auto frame = decoder.next()) {
        const bool isBright = brightness(*frame) > 0.5;
        if (isBright && !wasBright) {
            result.push_back(frame->time());
        }
        wasBright = isBright;
    }
    return result;
}

std::vector<double> beeps(const std::filesystem::path& sound)
{
    constexpr float kLoud = 0.02F;
    constexpr double kSilence = 0.2; // seconds
    const double rate = AudioReader(sound).sampleRate();
    const auto samples = test::readSound(sound).at(0);
    std::vector<double> result;
    double loudUntil = 0; // a file that begins with sound begins within a beep
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (std::abs(samples[i]) < kLoud) {
            continue;
        }
        const double time = static_cast<double>(i) / rate;
        if (time - loudUntil > kSilence) {
            result.push_back(time);
        }
        loudUntil = time;
    }
    return result;
}

} // namespace zento
