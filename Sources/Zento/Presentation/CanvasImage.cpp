#include "Zento/Presentation/CanvasImage.h"

namespace zento {

Canvas rounded(const Canvas& canvas, double radius)
{
    Canvas result(canvas.width(), canvas.height());
    result.clip(Path().roundedRect(canvas.bounds(), radius));
    result.drawImage(canvas, canvas.bounds(), Interpolation::Nearest);
    return result;
}

} // namespace zento
