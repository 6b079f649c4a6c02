#pragma once

#include "Zento/Model/AppModel.h"

#include <stop_token>

namespace zento {

/// The display that the user chooses in the desktop's dialog, or chose the last time, as it is now.
/// The recording of an area asks for the same one.
///
/// Threading: any; blocks until they have chosen, or `stop` is requested. Throws `Error` as
/// `ScreenshotTool::capture`.
DisplayPicture displayPicture(const std::stop_token& stop);

} // namespace zento
