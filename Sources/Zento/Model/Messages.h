#pragma once

#include "Zento/Model/Clock.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace zento {

/// What the user shall read: one message that stays until it is closed, one toast that goes by
/// itself.
///
/// Threading: the main thread.
class Messages : public QObject {
    Q_OBJECT
    /// Whole sentences; empty when there is nothing to read.
    Q_PROPERTY(
        QString errorMessage READ errorMessage WRITE setErrorMessage NOTIFY errorMessageChanged)
    /// A short confirmation; empty when there is none. The newest replaces the one before.
    Q_PROPERTY(QString toast READ toast NOTIFY toastChanged)
    /// What the toast's button says: "Undo"; empty when it has none.
    Q_PROPERTY(QString toastAction READ toastAction NOTIFY toastChanged)

public:
    explicit Messages(Clock& clock);

    QString errorMessage() const { return m_errorMessage; }
    QString toast() const { return m_toast; }
    QString toastAction() const { return m_toastAction; }

    void setErrorMessage(const QString& message);
    void setToast(const QString& text);
    void setToast(const QString& text, const QString& action, std::function<void()> act);

    Q_INVOKABLE void clearErrorMessage() { setErrorMessage({}); }
    Q_INVOKABLE void closeToast();

    /// What the toast's button does; the toast closes.
    Q_INVOKABLE void runToastAction();

Q_SIGNALS:
    void errorMessageChanged();
    void toastChanged();

private:
    Clock& m_clock;
    QString m_errorMessage;
    QString m_toast;
    QString m_toastAction;
    std::function<void()> m_act;
    std::unique_ptr<Timer> m_toastTimer;
};

} // namespace zento
