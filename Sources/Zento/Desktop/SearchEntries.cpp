#include "Zento/Desktop/SearchEntries.h"

#include "Zento/Model/FilePath.h"
#include "Zento/Model/SessionNames.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace zento {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("zento::SearchEntry", text);
}

} // namespace

SearchEntry searchEntry(const SessionItem& item)
{
    QString description =
        tr("%1s screen recording").arg(static_cast<qlonglong>(std::llround(item.duration)));
    if (item.appName) {
        description += tr(" of %1").arg(QString::fromStdString(*item.appName));
    }
    if (item.hasRender) {
        description += tr(" · rendered");
    }
    return {
        .identifier = textOf(item.url),
        .title = tr("Zento recording — %1").arg(nameOf(item)),
        .description = description,
        .keywords = {"zento", tr("screen recording")}};
}

bool matches(const SearchEntry& entry, const QStringList& terms)
{
    return std::ranges::all_of(terms, [&](const QString& term) {
        return entry.title.contains(term, Qt::CaseInsensitive)
               || entry.description.contains(term, Qt::CaseInsensitive)
               || std::ranges::any_of(entry.keywords, [&](const QString& keyword) {
                      return keyword.contains(term, Qt::CaseInsensitive);
                  });
    });
}

} // namespace zento
