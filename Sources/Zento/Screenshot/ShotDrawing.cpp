#include "Zento/Screenshot/ShotDrawing.h"

#include "ZentoRender/Screenshot/AnnotationRenderer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zento {

DisplayShot DisplayShot::of(const std::shared_ptr<const Canvas>& image)
{
    const double pixels = static_cast<double>(image->width()) * image->height();
    const double scale =
        std::min(static_cast<double>(kMostWidth) / image->width(), std::sqrt(kMostPixels / pixels));
    if (scale >= 1) {
        return {.base = image};
    }
    const auto reducedLength = [scale](int length) {
        return std::max(static_cast<int>(std::lround(length * scale)), 1);
    };
    Canvas reduced(reducedLength(image->width()), reducedLength(image->height()));
    reduced.drawImage(*image, reduced.bounds());
    return {.base = std::make_shared<const Canvas>(std::move(reduced)), .scale = scale};
}

ShotDrawing::ShotDrawing(DisplayShot shot)
    : m_shot(std::move(shot))
{
}

Canvas ShotDrawing::draw(const ShotDocument& document, const ShotStyle& style)
{
    Canvas marked = AnnotationRenderer::flatten(
        *m_shot.base, document.annotations, document.crop, m_shot.scale);
    const int width = marked.width();
    const int height = marked.height();
    if (!m_frame || m_frame->style != style || m_frame->width != width
        || m_frame->height != height) {
        m_frame.emplace(style, width, height, ShotFrame(style, width, height, m_shot.scale));
    }
    return m_frame->frame.around(marked);
}

Canvas flattened(const Canvas& image, const ShotDocument& document, const ShotStyle& style)
{
    return ShotComposer::beautify(
        AnnotationRenderer::flatten(image, document.annotations, document.crop), style);
}

} // namespace zento
