#pragma once

namespace zento {

/// Whether something blends the windows of the X11 display of the environment, so that a part of
/// one that is transparent shows what lies below it. Without such a display: true, as on a desktop
/// that always does. Asks the server. Threading: any thread.
bool blendsWindows();

} // namespace zento
