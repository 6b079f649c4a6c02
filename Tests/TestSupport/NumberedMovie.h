#pragma once

#include "ZentoCore/Plane.h"
#include "ZentoMedia/FilmWriter.h"
#include "ZentoMedia/VideoFrame.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace zento {
class ProResWriter;
}

namespace zento::test {

/// Samples of a picture and the views of them.
template <typename Sample>
struct OwnedPicture {
    std::shared_ptr<Sample[]> samples;
    YuvPlanes<Sample> planes;
};

using FilmPicture = OwnedPicture<std::uint8_t>;      // 4:2:0, 8 bits
using RecordedPicture = OwnedPicture<std::uint16_t>; // 4:2:2, 10 bits

/// A picture that says its number, [0, 65536), whatever is done to it: its luma is a grid of 4 × 4
/// cells, white for the bits that are 1, the lowest at the top-left; its chroma is `chromaOf` the
/// number all over. Even sizes from 16 × 16 up.
FilmPicture numberedFilmPicture(int number, int width, int height);
RecordedPicture numberedRecordedPicture(int number, int width, int height);

/// Noise, the same for the same seed: what an encoder cannot make small.
FilmPicture noiseFilmPicture(unsigned seed, int width, int height);
RecordedPicture noiseRecordedPicture(unsigned seed, int width, int height);

/// The number of a picture that was made by the functions above, from the cells' centres.
int numberOf(const YuvPlanes<const std::uint8_t>& picture);
int numberOf(const YuvPlanes<const std::uint16_t>& picture);
int numberOf(const VideoFrame& frame);

struct Chroma {
    int cb = 0; // levels of 8 bits
    int cr = 0;

    bool operator==(const Chroma&) const = default;
};

Chroma chromaOf(int number);

struct NumberedFrame {
    int number = 0;
    double time = 0; // seconds

    bool operator==(const NumberedFrame&) const = default;
};

/// Appends a numbered picture. Waits while the writer is not ready.
void appendNumbered(ProResWriter& writer, VideoSize size, const NumberedFrame& frame);

/// Writes a recording (ProRes) of numbered pictures. Waits for the writer where it is not ready.
void writeNumberedRecording(
    const std::filesystem::path& path, VideoSize size, const std::vector<NumberedFrame>& frames);

/// The same, as it lies there before it is finished: what a kill of its process leaves.
void writeGrowingRecording(
    const std::filesystem::path& path, VideoSize size, const std::vector<NumberedFrame>& frames);

/// How many whole pictures a movie holds at this moment; 0 of what is none.
std::size_t readableFrameCount(const std::filesystem::path& path);

/// Waits until a movie in the making holds so many. False if it does not come to that within a time
/// that only a fault takes.
bool comesToHold(const std::filesystem::path& path, std::size_t frameCount);

/// Writes a film (H.264) of numbered pictures, `numbers[i]` as frame i.
void writeNumberedFilm(
    const std::filesystem::path& path, const FilmFormat& format, const std::vector<int>& numbers);

/// The frames first, first + 1, … at a steady rate.
std::vector<NumberedFrame> countedFrames(int first, int count, double fps);

/// first, first + 1, …
std::vector<int> countedNumbers(int first, int count);

/// All frames the decoder gives.
std::vector<VideoFrame> readFrames(const std::filesystem::path& path, int threads = 1);

/// Numbers and times of `readFrames`.
std::vector<NumberedFrame> readNumbers(const std::filesystem::path& path, int threads = 1);

} // namespace zento::test
