#pragma once

#include <QFile>
#include <QString>

#include <filesystem>

namespace zento {

/// A file's path as text, and back: what the file system cannot spell stays as it is.
inline QString textOf(const std::filesystem::path& path)
{
    return QFile::decodeName(path.c_str());
}

inline std::filesystem::path pathOf(const QString& text)
{
    return QFile::encodeName(text).toStdString();
}

} // namespace zento
