#pragma once

#include "ZentoMedia/CameraPicture.h"

#include <optional>
#include <vector>

struct spa_buffer;      // NOLINT(readability-identifier-naming): the library's own name
struct spa_pod;         // NOLINT(readability-identifier-naming): the library's own name
struct spa_pod_builder; // NOLINT(readability-identifier-naming): the library's own name

namespace zento {

/// What we would have of a camera, the best first. In the builder's memory.
std::vector<const spa_pod*> wantedCameraFormats(spa_pod_builder& builder);

/// The form of a camera's pictures, without their planes; nothing for one we do not read.
std::optional<CameraPicture> cameraFormat(const spa_pod& format);

/// The picture of that form in a buffer; nothing if the buffer does not hold a whole one.
std::optional<CameraPicture> cameraPicture(const CameraPicture& form, const spa_buffer& buffer);

} // namespace zento
