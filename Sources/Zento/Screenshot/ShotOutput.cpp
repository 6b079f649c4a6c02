#include "Zento/Screenshot/ShotOutput.h"

#include <QClipboard>
#include <QDateTime>
#include <QDir>
#include <QDrag>
#include <QGuiApplication>
#include <QPixmap>
#include <QPointer>
#include <QStandardPaths>

namespace zento {

ShotOutput::ShotOutput(MakePng makePng, Ports ports, QObject* parent)
    : QObject(parent)
    , m_makePng(std::move(makePng))
    , m_ports(std::move(ports))
{
}

QString ShotOutput::proposedName()
{
    return QStringLiteral("Zento ")
           + QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"))
           + QStringLiteral(".png");
}

QString ShotOutput::proposedPath()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    if (!QDir(folder).exists()) {
        folder = QDir::homePath();
    }
    return QDir(folder).filePath(proposedName());
}

/// `work` beside the main thread, then `then` on it with what came of it, unless it failed.
template <typename Work, typename Then>
void ShotOutput::run(Work work, Then then)
{
    ++m_underWay;
    compute(m_ports.worker, this, std::move(work), [this, then = std::move(then)](auto outcome) {
        if (outcome) {
            then(std::move(outcome));
        } else {
            Q_EMIT failed(QString::fromStdString(outcome.error()));
        }
        if (--m_underWay == 0) {
            Q_EMIT rested();
        }
    });
}

/// Hands the finished picture to `use`: on the main thread, at once or later.
template <typename Use>
void ShotOutput::produce(const ShotLook& look, Use use)
{
    if (m_made && m_made->first == look) {
        use(m_made->second);
        return;
    }
    run([make = m_makePng, look] { return make(look); },
        [this, look, use = std::move(use)](Outcome<QByteArray> png) {
            m_made.emplace(look, *png);
            use(*png);
        });
}

/// `then` runs when the file is whole.
void ShotOutput::write(const QString& path, const QByteArray& png, std::function<void()> then)
{
    run([path, png] { writeWhole(path, png); },
        [then = std::move(then)](const Outcome<void>&) { then(); });
}

void ShotOutput::copy(const ShotLook& look)
{
    produce(look, [this](const QByteArray& png) {
        auto* const data = new ShotMimeData({proposedName(), [png] { return png; }}, {});
        QGuiApplication::clipboard()->setMimeData(data); // which takes it
        Q_EMIT done(tr("Copied"));
    });
}

void ShotOutput::save(const ShotLook& look, const QString& path)
{
    produce(look, [this, path](const QByteArray& png) {
        write(path, png, [this] { Q_EMIT done(tr("Saved")); });
    });
}

ShotExport ShotOutput::shotExport(const ShotLook& look) const
{
    return {proposedName(), [make = m_makePng, look, made = m_made]() -> QByteArray {
                return made && made->first == look ? made->second : make(look);
            }};
}

void ShotOutput::drag(const ShotLook& look, const QImage& picture)
{
    constexpr QSize kThumbnail(200, 140);
    auto* const data = new ShotMimeData(shotExport(look), m_ports.folder);
    connect(data, &ShotMimeData::failed, this, &ShotOutput::failed);
    auto* const drag = new QDrag(this); // which deletes itself after the drop
    drag->setMimeData(data);
    drag->setPixmap(QPixmap::fromImage(
        picture.scaled(kThumbnail, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    drag->exec(Qt::CopyAction);
}

/// Hands a file of the picture to another program.
void ShotOutput::share(const ShotLook& look, std::function<void(const QString& path)> hand)
{
    produce(look, [this, hand = std::move(hand)](const QByteArray& png) {
        const QString path = QDir(m_ports.folder).filePath(proposedName());
        write(path, png, [hand, path] { hand(path); });
    });
}

/// Told when the desktop answers, which may be after the object has gone.
std::function<void(std::string)> ShotOutput::sharingFailed()
{
    return [self = QPointer(this)](const std::string& reason) {
        if (self) {
            Q_EMIT self->failed(tr("Sharing failed: %1").arg(QString::fromStdString(reason)));
        }
    };
}

void ShotOutput::openWith(const ShotLook& look)
{
    share(look, [this](const QString& path) {
        m_ports.files->openWith(path.toStdString(), sharingFailed());
    });
}

void ShotOutput::composeMail(const ShotLook& look)
{
    share(look, [this](const QString& path) {
        m_ports.files->composeMail(
            path.toStdString(), tr("Screenshot").toStdString(), sharingFailed());
    });
}

} // namespace zento
