#include "Zento/Presentation/ShotView.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>

#include <utility>

namespace zento {

ShotView::ShotView(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void ShotView::setPicture(const QImage& picture)
{
    m_picture = picture;
    m_isNew = true;
    update();
    Q_EMIT pictureChanged();
}

QSGNode* ShotView::updatePaintNode(QSGNode* node, UpdatePaintNodeData*)
{
    auto* image = static_cast<QSGImageNode*>(node);
    if (m_picture.isNull() || width() <= 0 || height() <= 0) {
        delete image;
        m_isNew = true; // for the node to come
        return nullptr;
    }
    if (!image) {
        image = window()->createImageNode();
        image->setOwnsTexture(true);
        image->setFiltering(QSGTexture::Linear);
        m_isNew = true;
    }
    if (std::exchange(m_isNew, false))
        image->setTexture(window()->createTextureFromImage(m_picture));
    image->setRect(boundingRect());
    image->setSourceRect(QRectF(QPointF(), m_picture.size()));
    return image;
}

} // namespace zento
