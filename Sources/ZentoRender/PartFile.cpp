#include "ZentoRender/PartFile.h"

#include <string>
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

Error PartFile::aboutTarget(const Error& error) const
{
    std::string sentence = error.what();
    if (const auto place = sentence.find(m_path.string()); place != std::string::npos)
        sentence.replace(place, m_path.string().size(), m_target.string());
    return {error.domain(), error.code(), sentence};
}

void PartFile::renameToTarget()
{
    std::error_code error;
    std::filesystem::rename(m_path, m_target, error);
    if (error)
        throw systemError("Cannot replace", m_target.string(), error.value());
}

} // namespace zento
