#pragma once

#include <string>
#include <string_view>

namespace zento {

/// The role under which a session keeps an element, from its AT-SPI role name: "push button" is
/// "AXButton". A name outside the table becomes "AX" and its words in camel case; an empty one is
/// "AXUnknown".
std::string axRole(std::string_view atspiRole);

} // namespace zento
