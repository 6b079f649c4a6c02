#include "ZentoRender/PartFile.h"

#include "ZentoCore/Error.h"

#include <system_error>
#include <utility>

namespace zento {

PartFile::PartFile(std::filesystem::path target)
    : m_target(std::move(target))
    , m_file(besideTarget(m_target, ".part" + m_target.extension().string()))
{
}

void PartFile::renameToTarget()
{
    std::error_code error;
    std::filesystem::rename(path(), m_target, error);
    if (error)
        throw systemError("Cannot replace", m_target.string(), error.value());
}

} // namespace zento
