#include "Zento/Model/Messages.h"

#include <utility>

namespace zento {

namespace {

constexpr std::chrono::milliseconds kToastTime{3200};
constexpr std::chrono::milliseconds kToastTimeWithAction{8000}; // there is something to decide

} // namespace

Messages::Messages(Clock& clock)
    : m_clock(clock)
{
}

void Messages::setErrorMessage(const QString& message)
{
    if (m_errorMessage != message) {
        m_errorMessage = message;
        Q_EMIT errorMessageChanged();
    }
}

void Messages::setToast(const QString& text)
{
    setToast(text, {}, {});
}

void Messages::setToast(const QString& text, const QString& action, std::function<void()> act)
{
    m_toast = text;
    m_toastAction = action;
    m_act = std::move(act);
    m_toastTimer = m_clock.every(
        action.isEmpty() ? kToastTime : kToastTimeWithAction, [this] { closeToast(); });
    Q_EMIT toastChanged();
}

void Messages::closeToast()
{
    m_toastTimer.reset();
    m_act = nullptr;
    m_toast.clear();
    m_toastAction.clear();
    Q_EMIT toastChanged();
}

void Messages::runToastAction()
{
    const auto act = std::exchange(m_act, nullptr);
    closeToast();
    if (act) {
        act();
    }
}

} // namespace zento
