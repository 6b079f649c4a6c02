#pragma once

#include "ZentoCore/Error.h"

#include <filesystem>

namespace zento {

/// A file in the making: a name beside the target, "film.part.mp4" for "film.mp4", that is removed
/// unless it takes the target's place in the end.
class PartFile {
public:
    explicit PartFile(std::filesystem::path target);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    /// An error about this file as one about the target, whose name the user gave.
    Error aboutTarget(const Error& error) const;

    /// Replaces the target. The file must be complete and closed. Throws `Error`.
    void renameToTarget();

private:
    std::filesystem::path m_target;
    std::filesystem::path m_path;
};

} // namespace zento
