#pragma once

#include "Zento/Model/SessionItem.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace zento {

/// A recording as the desktop's search knows it.
struct SearchEntry {
    QString identifier; // the bundle's path
    QString title;
    QString description;
    QStringList keywords;
};

SearchEntry searchEntry(const SessionItem& item);

/// Whether every term occurs in the title, the description or a keyword, whatever its case.
bool matches(const SearchEntry& entry, const QStringList& terms);

} // namespace zento
