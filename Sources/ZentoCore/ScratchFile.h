#pragma once

#include <filesystem>
#include <string_view>

namespace zento {

/// A file a job needs on its way: it goes with the object, however the job ends.
class ScratchFile {
public:
    explicit ScratchFile(std::filesystem::path path);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// The target's name with another ending: "film.video.mp4" beside "film.mp4".
std::filesystem::path besideTarget(std::filesystem::path target, std::string_view ending);

} // namespace zento
