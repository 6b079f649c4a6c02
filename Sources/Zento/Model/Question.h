#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace zento {

/// One question to the user at a time, with two answers. A sheet shows it while `isOpen`.
///
/// Threading: the main thread.
class Question : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString detail READ detail NOTIFY changed)
    Q_PROPERTY(QString acceptText READ acceptText NOTIFY changed)
    Q_PROPERTY(QString rejectText READ rejectText NOTIFY changed)
    /// Accepting takes something away: the button is a red one.
    Q_PROPERTY(bool isDestructive READ isDestructive NOTIFY changed)

public:
    struct Content {
        QString text;
        QString detail;
        QString acceptText;
        QString rejectText;
        bool isDestructive = false;
        std::function<void()> onAccept;
    };

    /// A question that is still open counts as rejected.
    void ask(Content content);

    bool isOpen() const { return m_isOpen; }
    QString text() const { return m_content.text; }
    QString detail() const { return m_content.detail; }
    QString acceptText() const { return m_content.acceptText; }
    QString rejectText() const { return m_content.rejectText; }
    bool isDestructive() const { return m_content.isDestructive; }

    Q_INVOKABLE void accept();
    Q_INVOKABLE void reject();

Q_SIGNALS:
    void changed();

private:
    Content m_content;
    bool m_isOpen = false;
};

} // namespace zento
