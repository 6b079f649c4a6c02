#pragma once

#include <functional>
#include <span>
#include <stop_token>
#include <string>

namespace zento {

struct GlobalShortcut {
    std::string id;          // for the program
    std::string description; // for the user
    std::string trigger;     // the keys we propose, as the portals write them; may be empty
};

/// Binds keys with the desktop's GlobalShortcuts portal and blocks until `stop` is requested;
/// `pressed` is told the id of each that is pressed meanwhile.
///
/// Throws `Error`: kPortalSilent where there is no such portal, kPortalDenied when the user wants
/// none of the keys, kPortalFailed, and kCancelled when it is stopped before they are bound.
///
/// Threading: any thread, on which `pressed` runs.
void listenToShortcuts(
    std::span<const GlobalShortcut> shortcuts,
    const std::function<void(const std::string& id)>& pressed,
    const std::stop_token& stop);

} // namespace zento
