#pragma once

#include <QQuickImageProvider>

namespace zento {

/// Soft shadows of rounded rectangles as nine-patches: "image://shadow/BLUR/RADIUS/AARRGGBB".
/// Blur and radius in pixels, the blur as style sheets mean it, twice the deviation. Every border
/// of the patch is `BLUR + RADIUS` wide, its middle is one pixel; the rectangle itself lies `BLUR`
/// within.
///
/// Threading: as Qt calls it.
class ShadowProvider : public QQuickImageProvider {
public:
    ShadowProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace zento
