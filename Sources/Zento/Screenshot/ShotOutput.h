#pragma once

#include "Zento/Model/FileServices.h"
#include "Zento/Model/Worker.h"
#include "Zento/Screenshot/ShotDrawing.h"
#include "Zento/Screenshot/ShotExport.h"

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace zento {

/// Gives the finished picture of one shot away: to the clipboard, into a file, to where it is
/// dragged, to other programs.
///
/// The picture is made and written beside the main thread; the one that was made
/// last is kept. Only a drop, which cannot wait, makes it on the main thread.
///
/// Threading: the main thread. Errors: whatever cannot be done is told by `failed`.
class ShotOutput : public QObject {
    Q_OBJECT

public:
    /// They outlive the object.
    struct Ports {
        Worker& worker;
        FileServices* files = nullptr; // null: nothing to share with
        QString folder;                // keeps what was dragged out or shared
    };

    /// The picture at full resolution as a PNG file. Any thread; throws if it cannot be made.
    using MakePng = std::function<QByteArray(const ShotLook&)>;

    ShotOutput(MakePng makePng, Ports ports, QObject* parent = nullptr);

    /// "Zento 2026-03-01 09-05-00.png"
    static QString proposedName();
    static QString proposedPath(); // in the folder of pictures, or at home

    bool canShare() const { return m_ports.files != nullptr; }
    bool isBusy() const { return m_underWay > 0; }

    void copy(const ShotLook& look);
    void save(const ShotLook& look, const QString& path);
    /// Runs until the drop. `picture` hangs on the pointer.
    void drag(const ShotLook& look, const QImage& picture);
    void openWith(const ShotLook& look);
    void composeMail(const ShotLook& look);

    ShotExport shotExport(const ShotLook& look) const;

Q_SIGNALS:
    void done(const QString& note); // "Copied", "Saved"
    void failed(const QString& sentence);
    void rested(); // nothing is under way any more

private:
    template <typename Work, typename Then>
    void run(Work work, Then then);
    template <typename Use>
    void produce(const ShotLook& look, Use use);
    void write(const QString& path, const QByteArray& png, std::function<void()> then);
    void share(const ShotLook& look, std::function<void(const QString& path)> hand);
    std::function<void(std::string)> sharingFailed();

    MakePng m_makePng;
    Ports m_ports;
    std::optional<std::pair<ShotLook, QByteArray>> m_made;
    int m_underWay = 0;
};

} // namespace zento
