#include "ZentoCore/PartFile.h"

#include "ZentoCore/FileIO.h"

#include <string>
#include <utility>

namespace zento {

PartFile::PartFile(std::filesystem::path target)
    : m_target(std::move(target))
    , m_file(besideTarget(m_target, ".part" + m_target.extension().string()))
{
}

void PartFile::renameToTarget()
{
    replaceFile(path(), m_target);
}

Error renamed(
    const Error& error, const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::string sentence = error.what();
    if (const auto place = sentence.find(from.string()); place != std::string::npos)
        sentence.replace(place, from.string().size(), to.string());
    return {error.domain(), error.code(), sentence};
}

} // namespace zento
