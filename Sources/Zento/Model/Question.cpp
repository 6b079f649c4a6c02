#include "Zento/Model/Question.h"

#include <utility>

namespace zento {

void Question::ask(Content content)
{
    m_content = std::move(content);
    m_isOpen = true;
    Q_EMIT changed();
}

void Question::accept()
{
    if (!m_isOpen) {
        return;
    }
    const auto act = std::move(m_content.onAccept);
    reject();
    if (act) {
        act();
    }
}

void Question::reject()
{
    m_isOpen = false;
    m_content.onAccept = nullptr; // the texts stay for the sheet that fades away
    Q_EMIT changed();
}

} // namespace zento
