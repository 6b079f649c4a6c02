#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zento::ffmpeg {

struct FragmentSample {
    std::int64_t duration = 0; // ticks
    std::int64_t size = 0;     // bytes in the file
    bool isKeyFrame = true;
};

/// How many bytes `fragmentHeader` gives for so many samples.
std::int64_t fragmentHeaderSize(std::size_t sampleCount);

/// What stands in front of the samples of a fragment of track 1: a "moof" and the header of an
/// "mdat" (ISO/IEC 14496-12, 8.8). Nothing in it depends on its place in the file. `sequence`: of
/// the fragment, from 1 on; `start`: of its first sample, in ticks.
///
/// The library's writer of fragments will not do: it moves the start of a fragment to the end of
/// the one before, as the durations known then say, and a recording's pauses are not known then.
std::vector<std::uint8_t>
fragmentHeader(std::uint32_t sequence, std::int64_t start, std::span<const FragmentSample> samples);

} // namespace zento::ffmpeg
