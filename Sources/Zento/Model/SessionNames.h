#pragma once

#include "Zento/Model/SessionItem.h"

#include <QDate>
#include <QDateTime>
#include <QString>

// What a recording is called in the user's language. Dates are in the local time zone.

namespace zento {

/// The title, or the date, or the folder's name where there is neither.
QString nameOf(const SessionItem& item);

/// Invalid if unknown.
QDateTime dateTimeOf(const SessionItem& item);

/// The heading a list shows it under: "Today", "Yesterday", "Last week", "March 2026", "Undated".
QString sectionOf(const SessionItem& item, const QDate& today);

} // namespace zento
