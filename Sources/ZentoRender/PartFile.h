#pragma once

#include "ZentoRender/ScratchFile.h"

#include <filesystem>

namespace zento {

/// A file in the making: a name beside the target, "film.part.mp4" for "film.mp4", that is removed
/// unless it takes the target's place in the end.
class PartFile {
public:
    explicit PartFile(std::filesystem::path target);

    const std::filesystem::path& path() const { return m_file.path(); }

    /// Replaces the target. The file must be complete and closed. Throws `Error`.
    void renameToTarget();

private:
    std::filesystem::path m_target;
    ScratchFile m_file;
};

} // namespace zento
