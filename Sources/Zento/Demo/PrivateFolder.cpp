#include "Zento/Demo/PrivateFolder.h"

#include "ZentoCore/Error.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>

namespace zento {

namespace fs = std::filesystem;

PrivateFolder::PrivateFolder(std::string_view prefix)
{
    std::string pattern = (fs::temp_directory_path() / prefix).string() + "XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        throw systemError("make the folder", pattern, errno);
    }
    m_path = pattern;
}

PrivateFolder::~PrivateFolder()
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

fs::path PrivateFolder::makeFolder(const fs::path& name) const
{
    fs::path folder = m_path / name;
    std::error_code error;
    fs::create_directories(folder, error);
    if (!error) {
        fs::permissions(folder, fs::perms::owner_all, error);
    }
    if (error) {
        throw systemError("make the folder", folder.string(), error.value());
    }
    return folder;
}

fs::path PrivateFolder::writeFile(const fs::path& name, std::string_view content) const
{
    fs::path file = m_path / name;
    makeFolder(name.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << content;
    stream.close();
    if (!stream) {
        throw systemError("write", file.string(), errno);
    }
    return file;
}

} // namespace zento
