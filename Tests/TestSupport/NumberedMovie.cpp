#include "TestSupport/NumberedMovie.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/ProResWriter.h"
#include "ZentoMedia/VideoDecoder.h"

#include <chrono>
#include <cstddef>
#include <random>
#include <thread>

namespace zento::test {

namespace {

constexpr int kColumns = 4;
constexpr int kRows = 4;
constexpr int kBlack = 16;
constexpr int kWhite = 235;

template <typename Sample>
constexpr int kLevelScale = sizeof(Sample) == 1 ? 1 : 4; // levels of 10 bits to one of 8

template <typename Sample>
OwnedPicture<Sample> emptyPicture(int width, int height)
{
    const int chromaHeight = sizeof(Sample) == 1 ? height / 2 : height;
    const auto lumaCount = static_cast<std::ptrdiff_t>(width) * height;
    const auto chromaCount = static_cast<std::ptrdiff_t>(width / 2) * chromaHeight;
    OwnedPicture<Sample> picture;
    picture.samples =
        std::make_shared<Sample[]>(static_cast<std::size_t>(lumaCount + 2 * chromaCount));
    Sample* first = picture.samples.get();
    picture.planes.y = {first, width, height, width};
    picture.planes.cb = {first + lumaCount, width / 2, chromaHeight, width / 2};
    picture.planes.cr = {first + lumaCount + chromaCount, width / 2, chromaHeight, width / 2};
    return picture;
}

/// Sets every sample of a plane to what `level(x, y)` gives in levels of 8 bits.
template <typename Sample, typename Level>
void fill(const Plane<Sample>& plane, const Level& level)
{
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x)
            plane.row(y)[x] = static_cast<Sample>(level(x, y) * kLevelScale<Sample>);
    }
}

template <typename Sample>
OwnedPicture<Sample> numberedPicture(int number, int width, int height)
{
    auto picture = emptyPicture<Sample>(width, height);
    fill(picture.planes.y, [&](int x, int y) {
        const int bit = y * kRows / height * kColumns + x * kColumns / width;
        return ((number >> bit) & 1) != 0 ? kWhite : kBlack;
    });
    const Chroma chroma = chromaOf(number);
    fill(picture.planes.cb, [&](int, int) { return chroma.cb; });
    fill(picture.planes.cr, [&](int, int) { return chroma.cr; });
    return picture;
}

template <typename Sample>
OwnedPicture<Sample> noisePicture(unsigned seed, int width, int height)
{
    auto picture = emptyPicture<Sample>(width, height);
    std::minstd_rand random(seed + 1);
    const auto noise = [&](int, int) { return kBlack + static_cast<int>(random() >> 8U) % 200; };
    fill(picture.planes.y, noise);
    fill(picture.planes.cb, noise);
    fill(picture.planes.cr, noise);
    return picture;
}

template <typename Sample>
int readNumber(const Plane<const Sample>& luma)
{
    constexpr int kMiddle = (kBlack + kWhite) / 2 * kLevelScale<Sample>;
    int number = 0;
    for (int bit = 0; bit < kColumns * kRows; ++bit) {
        const int x = (2 * (bit % kColumns) + 1) * luma.width / (2 * kColumns);
        const int y = (2 * (bit / kColumns) + 1) * luma.height / (2 * kRows);
        if (luma.row(y)[x] > kMiddle)
            number |= 1 << bit;
    }
    return number;
}

} // namespace

FilmPicture numberedFilmPicture(int number, int width, int height)
{
    return numberedPicture<std::uint8_t>(number, width, height);
}

RecordedPicture numberedRecordedPicture(int number, int width, int height)
{
    return numberedPicture<std::uint16_t>(number, width, height);
}

FilmPicture noiseFilmPicture(unsigned seed, int width, int height)
{
    return noisePicture<std::uint8_t>(seed, width, height);
}

RecordedPicture noiseRecordedPicture(unsigned seed, int width, int height)
{
    return noisePicture<std::uint16_t>(seed, width, height);
}

int numberOf(const YuvPlanes<const std::uint8_t>& picture)
{
    return readNumber(picture.y);
}

int numberOf(const YuvPlanes<const std::uint16_t>& picture)
{
    return readNumber(picture.y);
}

int numberOf(const VideoFrame& frame)
{
    return frame.bitDepth() == 8 ? numberOf(frame.planes8()) : numberOf(frame.planes10());
}

Chroma chromaOf(int number)
{
    return {64 + number % 8 * 16, 64 + number / 8 % 8 * 16};
}

void appendNumbered(ProResWriter& writer, VideoSize size, const NumberedFrame& frame)
{
    const auto picture = numberedRecordedPicture(frame.number, size.width, size.height);
    while (!writer.append(picture.planes, frame.time))
        std::this_thread::yield();
}

void writeNumberedRecording(
    const std::filesystem::path& path, VideoSize size, const std::vector<NumberedFrame>& frames)
{
    ProResWriter writer(path, size.width, size.height);
    for (const NumberedFrame& frame : frames)
        appendNumbered(writer, size, frame);
    writer.finish();
}

void writeGrowingRecording(
    const std::filesystem::path& path, VideoSize size, const std::vector<NumberedFrame>& frames)
{
    ProResWriter writer(path, size.width, size.height);
    for (const NumberedFrame& frame : frames)
        appendNumbered(writer, size, frame);
    comesToHold(path, frames.size());
}

std::size_t readableFrameCount(const std::filesystem::path& path)
{
    try {
        return readFrames(path).size();
    } catch (const Error&) {
        return 0;
    }
}

bool comesToHold(const std::filesystem::path& path, std::size_t frameCount)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (readableFrameCount(path) < frameCount && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    return readableFrameCount(path) == frameCount;
}

void writeNumberedFilm(
    const std::filesystem::path& path, const FilmFormat& format, const std::vector<int>& numbers)
{
    FilmWriter writer(path, format);
    std::int64_t index = 0;
    for (const int number : numbers) {
        const auto picture = numberedFilmPicture(number, format.width, format.height);
        writer.append(picture.planes, picture.samples, index++);
    }
    writer.finish();
}

std::vector<NumberedFrame> countedFrames(int first, int count, double fps)
{
    std::vector<NumberedFrame> frames;
    frames.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        frames.push_back({first + i, i / fps});
    return frames;
}

std::vector<int> countedNumbers(int first, int count)
{
    std::vector<int> numbers;
    numbers.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        numbers.push_back(first + i);
    return numbers;
}

std::vector<VideoFrame> readFrames(const std::filesystem::path& path, int threads)
{
    VideoDecoder decoder(path, threads);
    std::vector<VideoFrame> frames;
    while (auto frame = decoder.next())
        frames.push_back(std::move(*frame));
    return frames;
}

std::vector<NumberedFrame> readNumbers(const std::filesystem::path& path, int threads)
{
    std::vector<NumberedFrame> numbers;
    for (const VideoFrame& frame : readFrames(path, threads))
        numbers.push_back({numberOf(frame), frame.time()});
    return numbers;
}

} // namespace zento::test
