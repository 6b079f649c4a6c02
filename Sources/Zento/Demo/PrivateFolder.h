#pragma once

#include <filesystem>
#include <string_view>

namespace zento {

/// A new folder for this user alone (mode 0700) among the system's temporary files, removed with
/// everything in it when the object goes. Throws `Error` of the domain "errno".
class PrivateFolder {
public:
    /// `prefix` begins the folder's name; six random characters follow.
    explicit PrivateFolder(std::string_view prefix);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    /// Makes the folder `name` in it, also 0700, and returns its path.
    std::filesystem::path makeFolder(const std::filesystem::path& name) const;

    /// Writes a file, and the folders above it, and returns its path.
    std::filesystem::path
    writeFile(const std::filesystem::path& name, std::string_view content) const;

private:
    std::filesystem::path m_path;
};

} // namespace zento
