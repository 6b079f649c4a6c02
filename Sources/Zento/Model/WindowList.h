#pragma once

#include "Zento/Model/Worker.h"

#include <QAbstractListModel>
#include <QImage>
#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace zento {

/// A window as the desktop tells of it.
struct DesktopWindow {
    std::uint32_t id = 0;
    QString application;
    QString title;
    double width = 0; // points, with its frame
    double height = 0;
    bool isOrdinary = true; // no panel, dock, menu or desktop
    bool isOurs = false;
};

/// Whether the window picker offers it: ordinary, of another program, above 200 × 150 points.
bool isPickable(const DesktopWindow& window);

/// The windows that can be recorded, from the front to the back, with pictures of them.
///
/// Threading: the main thread; windows are listed and pictured in the background.
class WindowList : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY countChanged)

public:
    enum Role {
        WindowIdRole = Qt::UserRole + 1, // "windowId": for `RecordingFlow::recordWindow`
        ApplicationRole,                 // "application"
        WindowTitleRole,                 // "title"
        ThumbnailRole, // "thumbnail": QImage of 320 pixels' width, null until it is there
        AspectRole,    // "aspect": width over height
    };

    /// What the desktop is asked; both block, and run in the background.
    struct Ports {
        Worker& worker;
        std::function<std::vector<DesktopWindow>()> list;
        std::function<QImage(std::uint32_t windowID, int width)> thumbnail;
    };

    explicit WindowList(Ports ports);

    int count() const { return static_cast<int>(m_entries.size()); }
    bool isLoading() const { return m_isLoading; }

    /// Lists anew; the pictures fill in as they arrive.
    Q_INVOKABLE void refresh();

    /// For an image provider: the picture of a window that is listed, else a null image.
    QImage thumbnail(std::uint32_t windowID) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    struct Entry {
        DesktopWindow window;
        QImage thumbnail;
    };

    Ports m_ports;
    std::vector<Entry> m_entries;
    bool m_isLoading = false;
    int m_generation = 0; // pictures of an earlier list are dropped

    void publish(std::vector<DesktopWindow> windows);
    void setThumbnail(int generation, std::uint32_t windowID, const QImage& image);
};

} // namespace zento
