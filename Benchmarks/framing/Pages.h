#pragma once

#include <string>

namespace zento::bench {

/// A page of cards, fields, tables and pictures.
enum class PageKind { Light, Dark, Dialog };
std::string page(PageKind kind);

/// A form with a group of fields, for the window builder.
std::string form();

} // namespace zento::bench
