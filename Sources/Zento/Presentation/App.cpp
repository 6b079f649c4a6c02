#include "Zento/Presentation/App.h"

#include "Zento/Model/AppSettings.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace zento {

void App::setModel(QObject* model)
{
    m_model = model;
    Q_EMIT modelChanged();
}

QVariant App::defaults()
{
    const QByteArray json = QByteArray::fromStdString(encodeSettings(AppSettings()));
    return QJsonDocument::fromJson(json).object().toVariantMap();
}

} // namespace zento
