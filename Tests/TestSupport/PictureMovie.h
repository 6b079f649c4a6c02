#pragma once

#include "ZentoImaging/Canvas.h"

#include <filesystem>
#include <vector>

namespace zento::test {

struct ShownPicture {
    double time = 0; // seconds, from which on it is shown
    const Canvas* picture = nullptr;
};

/// Writes a recording (ProRes) that shows these pictures, all of one size. Waits for the writer
/// where it is not ready.
void writePictures(const std::filesystem::path& file, const std::vector<ShownPicture>& pictures);

} // namespace zento::test
