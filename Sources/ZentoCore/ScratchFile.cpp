#include "ZentoCore/ScratchFile.h"

#include <system_error>
#include <utility>

namespace zento {

ScratchFile::ScratchFile(std::filesystem::path path)
    : m_path(std::move(path))
{
}

ScratchFile::~ScratchFile()
{
    std::error_code ignored; // it may have been renamed, or never made
    std::filesystem::remove(m_path, ignored);
}

std::filesystem::path besideTarget(std::filesystem::path target, std::string_view ending)
{
    target.replace_extension();
    target += ending;
    return target;
}

} // namespace zento
