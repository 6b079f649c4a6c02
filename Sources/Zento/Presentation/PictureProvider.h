#pragma once

#include "ZentoImaging/Canvas.h"

#include <QQuickAsyncImageProvider>
#include <QThreadPool>

#include <functional>

namespace zento {

/// Draws a picture of that size in pixels for the rest of an address.
///
/// Threading: called on a thread of the pool. Errors: what it throws leaves the picture empty and
/// is told on the console.
using PictureDrawing = std::function<Canvas(const QString& id, int width, int height)>;

/// Pictures that take their time, drawn beside the main thread: "image://NAME/RADIUS/…", the
/// corners rounded by RADIUS pixels. A request that nobody waits for any more is not drawn.
class PictureProvider : public QQuickAsyncImageProvider {
public:
    /// `threads` in [1, ∞).
    PictureProvider(PictureDrawing drawing, int threads);
    ~PictureProvider() override;
    QQuickImageResponse*
    requestImageResponse(const QString& id, const QSize& requestedSize) override;

private:
    PictureDrawing m_drawing;
    QThreadPool m_pool;
};

/// What a choice in the inspector looks like, drawn by the renderer that draws the film:
///   background/ID                     a preset of the catalogue
///   picture/PATH                      a picture, filling the swatch
///   card/DESIGN/RRGGBB/TITLE/LINE     a title card on a dark ground
///   pointer/SHAPE                     "arrow" or "hand"
///   shot/ID, shotpicture/PATH         a look of a screenshot
/// Words are percent-encoded.
Canvas drawSwatch(const QString& id, int width, int height);

/// A recording's picture: `id` is the bundle's path, percent-encoded, and behind the last slash
/// "film" for the exported film, with anything after it that tells its versions apart, or "raw" for
/// what was recorded.
Canvas drawRecording(const QString& id, int width, int height);

} // namespace zento
