#include "Zento/Model/SessionNames.h"

#include "Zento/Model/FilePath.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include <chrono>

namespace zento {

namespace {

struct Words {
    Q_DECLARE_TR_FUNCTIONS(SessionNames)
};

/// A date as in "9 Mar 2026": the locale's long form without the day of the week, the month short.
QString mediumDate(const QDate& date)
{
    static const QRegularExpression kWeekday("(^|[,.\\s]*)dddd([,.\\s]*|$)");
    QString format = QLocale().dateFormat(QLocale::LongFormat);
    format.replace("MMMM", "MMM");
    format.remove(kWeekday);
    return QLocale().toString(date, format);
}

} // namespace

QString nameOf(const SessionItem& item)
{
    if (const auto title = shownTitle(item)) {
        return QString::fromStdString(*title);
    }
    const QDateTime date = dateTimeOf(item);
    if (!date.isValid()) {
        return textOf(item.url.stem());
    }
    return Words::tr("%1, %2").arg(
        mediumDate(date.date()), QLocale().toString(date.time(), QLocale::ShortFormat));
}

QDateTime dateTimeOf(const SessionItem& item)
{
    if (item.date == SessionItem::kNoDate) {
        return {};
    }
    const auto since = std::chrono::floor<std::chrono::milliseconds>(item.date.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(since.count());
}

QString sectionOf(const SessionItem& item, const QDate& today)
{
    const QDate date = dateTimeOf(item).date();
    if (!date.isValid()) {
        return Words::tr("Undated");
    }
    const qint64 age = date.daysTo(today);
    if (age <= 0) {
        return Words::tr("Today");
    }
    if (age == 1) {
        return Words::tr("Yesterday");
    }
    if (age < 8) {
        return Words::tr("Last week");
    }
    return QLocale().standaloneMonthName(date.month()) + ' ' + QString::number(date.year());
}

} // namespace zento
