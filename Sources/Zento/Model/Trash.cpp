#include "Zento/Model/Trash.h"

#include "Zento/Model/FilePath.h"
#include "ZentoCore/Error.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QString>

#include <cerrno>
#include <system_error>

namespace zento {

namespace {

/// The note beside a trashed file that says where it was.
std::filesystem::path noteOf(const std::filesystem::path& trashed)
{
    std::filesystem::path note = trashed.parent_path().parent_path() / "info" / trashed.filename();
    note += ".trashinfo";
    return note;
}

} // namespace

Trash::Entry Trash::put(const std::filesystem::path& path)
{
    // Without its parent the user's trash cannot be made, and one beside the file takes its place.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QFile file(textOf(path));
    if (!file.moveToTrash()) {
        throw Error(
            ErrorCode::kTrashFailed,
            "could not move " + path.string()
                + " to the trash: " + file.errorString().toStdString());
    }
    return {path, pathOf(file.fileName())};
}

void Trash::restore(const Entry& entry)
{
    std::error_code error;
    if (std::filesystem::exists(entry.original, error)) {
        throw systemError("could not put back", entry.original.string(), EEXIST);
    }
    std::filesystem::rename(entry.trashed, entry.original, error);
    if (error) {
        throw systemError("could not put back", entry.original.string(), error.value());
    }
    std::filesystem::remove(noteOf(entry.trashed), error); // what it told of is gone
}

} // namespace zento
