#include "Zento/Presentation/FilmView.h"

#include <QQuickWindow>
#include <QSGImageNode>

namespace zento {

FilmView::FilmView(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void FilmView::setPreview(QObject* preview)
{
    auto* const live = qobject_cast<LivePreview*>(preview);
    if (m_preview == live)
        return;
    if (m_preview)
        disconnect(m_preview, nullptr, this, nullptr);
    m_preview = live;
    const auto show = [this] {
        m_isNew = true;
        update();
    };
    if (live)
        connect(live, &LivePreview::imageChanged, this, show);
    show();
    Q_EMIT previewChanged();
}

QSGNode* FilmView::updatePaintNode(QSGNode* node, UpdatePaintNodeData* /*data*/)
{
    auto* picture = static_cast<QSGImageNode*>(node);
    if (!m_preview || m_preview->image().isNull()) {
        delete picture;
        return nullptr;
    }
    if (picture == nullptr) {
        picture = window()->createImageNode();
        picture->setOwnsTexture(true);
        picture->setFiltering(QSGTexture::Linear);
        m_isNew = true;
    }
    if (m_isNew) {
        picture->setTexture(
            window()->createTextureFromImage(m_preview->image(), QQuickWindow::TextureIsOpaque));
        m_isNew = false;
        QMetaObject::invokeMethod(this, &FilmView::shown, Qt::QueuedConnection);
    }
    picture->setRect(boundingRect());
    return picture;
}

} // namespace zento
