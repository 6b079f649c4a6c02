#include "Tracks.h"

#include "SoundStage/SoundPlayer.h"
#include "TestSupport/Sounds.h"
#include "ZentoMedia/AudioReader.h"
#include "ZentoMedia/VideoDecoder.h"

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
    return test::wholeBeeps(test::readSound(sound).at(0), AudioReader(sound).sampleRate());
}

} // namespace zento
