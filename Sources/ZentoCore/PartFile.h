#pragma once

#include "ZentoCore/Error.h"
#include "ZentoCore/ScratchFile.h"

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

/// The same error with one file's name for another's: a user knows the target, not what it was made
/// under.
Error renamed(
    const Error& error, const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace zento
