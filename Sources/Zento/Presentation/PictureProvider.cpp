#include "Zento/Presentation/PictureProvider.h"

#include "Zento/Model/PictureImage.h"
#include "Zento/Presentation/CanvasImage.h"

#include <QDebug>

#include <atomic>
#include <exception>

namespace zento {
namespace {

class Response : public QQuickImageResponse {
public:
    Response(PictureDrawing drawing, const QString& id, QSize size)
        : m_drawing(std::move(drawing))
        , m_id(id)
        , m_size(size)
    {
    }

    void draw()
    {
        if (!m_cancelled && !m_size.isEmpty())
            drawPicture();
        // From the loop of the thread that asked: a picture done before that thread listens for it
        // would never be shown.
        QMetaObject::invokeMethod(this, &QQuickImageResponse::finished, Qt::QueuedConnection);
    }

    void cancel() override { m_cancelled = true; }
    QString errorString() const override { return m_error; }
    QQuickTextureFactory* textureFactory() const override
    {
        return m_image.isNull() ? nullptr : QQuickTextureFactory::textureFactoryForImage(m_image);
    }

private:
    void drawPicture()
    {
        const double radius = m_id.section(QLatin1Char('/'), 0, 0).toDouble();
        try {
            const Canvas canvas =
                m_drawing(m_id.section(QLatin1Char('/'), 1), m_size.width(), m_size.height());
            m_image = radius > 0 ? toImage(rounded(canvas, radius)) : toImage(canvas);
        } catch (const std::exception& error) {
            m_error = QString::fromUtf8(error.what());
        }
    }

    PictureDrawing m_drawing;
    QString m_id;
    QSize m_size;
    QImage m_image;
    QString m_error;
    std::atomic<bool> m_cancelled = false;
};

} // namespace

PictureProvider::PictureProvider(PictureDrawing drawing, int threads)
    : m_drawing(std::move(drawing))
{
    m_pool.setMaxThreadCount(threads);
}

PictureProvider::~PictureProvider()
{
    m_pool.clear();
    m_pool.waitForDone();
}

QQuickImageResponse*
PictureProvider::requestImageResponse(const QString& id, const QSize& requestedSize)
{
    auto* response = new Response(m_drawing, id, requestedSize);
    m_pool.start([response] { response->draw(); });
    return response;
}

} // namespace zento
