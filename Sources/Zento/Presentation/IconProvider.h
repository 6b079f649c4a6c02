#pragma once

#include <QQuickImageProvider>

namespace zento {

/// The icons of the program, in any colour: "image://icon/NAME/RRGGBB" or ".../AARRGGBB".
///
/// Threading: as Qt calls it.
class IconProvider : public QQuickImageProvider {
public:
    IconProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace zento
