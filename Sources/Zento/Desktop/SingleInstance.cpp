#include "Zento/Desktop/SingleInstance.h"

#include "Zento/Desktop/ApplicationObject.h"
#include "Zento/Desktop/Identity.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QUrl>

#include <utility>

namespace zento {

namespace {

constexpr auto kInterface = "org.freedesktop.Application";
constexpr int kTimeout = 5000; // milliseconds

} // namespace

SingleInstance::SingleInstance(QDBusConnection bus)
    : m_bus(std::move(bus))
    , m_object(new ApplicationObject(*this))
{
}

SingleInstance::~SingleInstance()
{
    release();
}

void SingleInstance::release()
{
    if (m_bus.isConnected()) {
        m_bus.unregisterService(kApplicationId);
        m_bus.unregisterObject(kApplicationPath);
    }
}

SingleInstance::Standing SingleInstance::claim(const QString& bundle)
{
    if (!m_bus.isConnected()) {
        return Standing::First;
    }
    // The object is there before the name: whoever sees the name may call at once.
    m_bus.registerObject(kApplicationPath, m_object, QDBusConnection::ExportAllSlots);
    if (m_bus.registerService(kApplicationId)) {
        return Standing::First;
    }
    m_bus.unregisterObject(kApplicationPath);
    QDBusMessage call = QDBusMessage::createMethodCall(
        kApplicationId, kApplicationPath, kInterface, bundle.isEmpty() ? "Activate" : "Open");
    if (!bundle.isEmpty()) {
        call << QStringList(QUrl::fromLocalFile(bundle).toString(QUrl::FullyEncoded));
    }
    call << QVariantMap();
    m_bus.call(call, QDBus::Block, kTimeout);
    return Standing::Second;
}

bool SingleInstance::tell(const QString& action, QDBusConnection bus)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        kApplicationId, kApplicationPath, kInterface, "ActivateAction");
    call.setAutoStartService(false);
    call << action << QVariantList() << QVariantMap();
    return bus.call(call, QDBus::Block, kTimeout).type() == QDBusMessage::ReplyMessage;
}

} // namespace zento
