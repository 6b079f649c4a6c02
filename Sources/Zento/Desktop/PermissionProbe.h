#pragma once

#include "Zento/Model/Permissions.h"
#include "ZentoCapture/DeviceWatch.h"

#include <memory>

namespace zento {

/// What can really be used on this desktop.
///
/// `screen`: an X server with a display, or on Wayland the desktop's ScreenCast portal. `input`:
/// the server's input extension, by which keys and clicks are read, or on Wayland the devices, if
/// the user may read them; there a recording does without. `accessibility`: the accessibility bus
/// is switched on (org.a11y.Status). `microphone` and `camera`: there is a device that can be
/// recorded. `window` and `scrolling`: on Wayland what the ScreenCast portal offers, and whether
/// there is a RemoteDesktop portal.
///
/// Threading: one thread, which is not the main one: it blocks on the server and the bus, on the
/// latter for at most a second.
class PermissionProbe {
public:
    explicit PermissionProbe(std::shared_ptr<DeviceWatch> devices);
    ~PermissionProbe();

    PermissionState operator()();

private:
    class Server;
    std::shared_ptr<DeviceWatch> m_devices;
    std::unique_ptr<Server> m_server; // kept while it answers
};

/// Switches the accessibility bus on, as the user asked; the desktop remembers it. Does not block.
void enableAccessibility();

/// Opens the desktop's own settings at sound or privacy, where it has such a program. Does not
/// block.
void openSoundSettings();
void openCameraSettings();

} // namespace zento
