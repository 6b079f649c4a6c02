#include "Zento/Model/Sharing.h"

#include "Zento/Model/CloudCopy.h"
#include "Zento/Model/FilePath.h"
#include "Zento/Model/SessionNames.h"
#include "ZentoCore/Error.h"

#include <QPointer>

#include <string>
#include <utility>

namespace zento {

namespace {

constexpr auto kFolderKey = "cloudFolder";

/// The copy of a film, and what the user calls the folder it is in.
struct Copied {
    std::filesystem::path file;
    std::string folderName;
};

} // namespace

Sharing::Sharing(Ports ports)
    : m_ports(std::move(ports))
{
    connect(&m_ports.library, &RecordingLibrary::selectedChanged, this, [this] {
        m_copy.clear();
        m_shareWhenUploaded = false;
        setStatus({});
    });
}

QString Sharing::cloudFolder() const
{
    return m_ports.defaults.value(kFolderKey).toString();
}

void Sharing::setCloudFolder(const QString& folder)
{
    if (folder != cloudFolder()) {
        m_ports.defaults.setValue(kFolderKey, folder);
        Q_EMIT changed();
    }
}

void Sharing::setStatus(const QString& status)
{
    m_status = status;
    Q_EMIT changed();
}

/// The recording to share; null, and the status says why, if there is no film.
const SessionItem* Sharing::sharedItem()
{
    const SessionItem* const item = m_ports.library.selectedSession();
    if (item != nullptr && !item->hasRender) {
        setStatus(tr("Export the video first"));
        return nullptr;
    }
    return item;
}

bool Sharing::shareLastExport()
{
    return sharedItem() != nullptr;
}

void Sharing::composeMail()
{
    if (const SessionItem* const item = sharedItem()) {
        m_ports.files.composeMail(
            filmOf(item->url),
            nameOf(*item).toStdString(),
            [self = QPointer(this)](const std::string& reason) {
                if (self) {
                    self->setStatus(tr("Sharing failed: %1").arg(QString::fromStdString(reason)));
                }
            });
    }
}

void Sharing::openWith()
{
    if (const SessionItem* const item = sharedItem()) {
        m_ports.files.openWith(
            filmOf(item->url), [self = QPointer(this)](const std::string& reason) {
                if (self) {
                    self->setStatus(tr("Sharing failed: %1").arg(QString::fromStdString(reason)));
                }
            });
    }
}

void Sharing::uploadToCloud()
{
    const SessionItem* const item = sharedItem();
    if (item == nullptr || m_isCopying) {
        return;
    }
    m_isCopying = true;
    setStatus(tr("Copying to the synced folder…"));
    compute(
        m_ports.worker,
        this,
        [film = filmOf(item->url),
         name = nameOf(*item).toStdString(),
         chosen = pathOf(cloudFolder()),
         home = m_ports.home]() -> std::optional<Copied> {
            const auto folder = syncedFolder(chosen, home);
            if (!folder) {
                return std::nullopt;
            }
            return Copied{copyToCloud(film, *folder, name), folder->filename().string()};
        },
        [this, shared = m_ports.library.selected()](const Outcome<std::optional<Copied>>& copy) {
            m_isCopying = false;
            const bool isShared = std::exchange(m_shareWhenUploaded, false);
            if (shared != m_ports.library.selected()) {
                Q_EMIT changed(); // the line is about another recording by now
            } else if (!copy) {
                setStatus(tr("Could not copy to the synced folder: %1")
                              .arg(QString::fromStdString(copy.error())));
            } else if (!*copy) {
                setStatus(tr("No synced folder is set up here. Choose one under Share."));
            } else {
                m_copy = textOf((*copy)->file);
                setStatus(tr("In %1 › Zento. Share Link… shows it, for its sync client to share.")
                              .arg(QString::fromStdString((*copy)->folderName)));
                if (isShared) {
                    shareCloudLink();
                }
            }
        });
}

void Sharing::shareCloudLink()
{
    if (m_copy.isEmpty()) {
        m_shareWhenUploaded = true;
        uploadToCloud();
        return;
    }
    m_ports.files.reveal(pathOf(m_copy));
}

} // namespace zento
