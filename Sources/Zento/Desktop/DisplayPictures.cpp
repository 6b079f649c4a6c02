#include "Zento/Desktop/DisplayPictures.h"

#include "Zento/Model/PictureImage.h"
#include "ZentoCapture/Desktop.h"
#include "ZentoCapture/ScreenshotTool.h"

namespace zento {

DisplayPicture displayPicture(const std::stop_token& stop)
{
    const auto desktop = openDesktop();
    desktop->choose(Target::Area{}, stop);
    const Shot shot = ScreenshotTool::captureChosen(*desktop, Target::Display{}, stop);
    const Rect bounds = desktop->displays().front().bounds;
    return {{bounds.x, bounds.y, bounds.w, bounds.h}, toImage(*shot.image)};
}

} // namespace zento
