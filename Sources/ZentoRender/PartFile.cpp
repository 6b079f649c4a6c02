#include "ZentoRender/PartFile.h"

#include "ZentoCore/Error.h"

#include <system_error>
#include <utility>

namespace zento {

PartFile::PartFile(std::filesystem::path target)
    : m_target(std::move(target))
    , m_path(m_target)
{
    m_path.replace_extension();
    m_path += ".part";
    m_path += m_target.extension();
}

PartFile::~PartFile()
{
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored); // nothing is there after the renaming
}

void PartFile::renameToTarget()
{
    std::error_code error;
    std::filesystem::rename(m_path, m_target, error);
    if (error)
        throw systemError("Cannot replace", m_target.string(), error.value());
}

} // namespace zento
