#pragma once

#include <string>

namespace zento::test {

/// A WAVE file of half a second of silence: 16 bits, one channel, 8000 samples a second.
inline std::string silentWave()
{
    using namespace std::string_literals;
    const std::string samples(8000, '\0');
    return "RIFF\x64\x1f\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0\x80\x3e\0\0\2\0\x10\0"
           "data\x40\x1f\0\0"s
           + samples;
}

} // namespace zento::test
