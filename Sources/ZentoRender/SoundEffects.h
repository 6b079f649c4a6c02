#pragma once

#include <span>

namespace zento::AudioMixer {

/// The two sounds a film can be given, one channel at 44,100 samples per second. They are computed,
/// once in a process, from sums of sines and an integer noise, so that they are the same on every
/// machine and in every build whose C library agrees on sin, exp and pow to within a few units in
/// the last place of a double: only where such a difference crosses the rounding to float could a
/// last bit differ.
///
/// Threading: from any thread.
std::span<const float> clickSFX();  // 0.06 s: a tick and a thump under a breath of noise
std::span<const float> whooshSFX(); // 0.38 s: a band of noise that sweeps up and down

} // namespace zento::AudioMixer
