#include "ZentoRender/FrameCompositor.h"

#include "ZentoImaging/Convert.h"
#include "ZentoRender/BackgroundRenderer.h"

#include <utility>

namespace zento {

FrameCompositor::FrameCompositor(
    const OutputSpec& output, const StyleSpec& style, VideoSize sourceSize)
    : m_output(output)
    , m_style(style)
    , m_sourceSize{static_cast<double>(sourceSize.width), static_cast<double>(sourceSize.height)}
    , m_cardPainter(
          toPicture(
              BackgroundRenderer::render(style.background, output.width, output.height),
              Layout::Yuv420),
          style)
    , m_pool(output.width, output.height)
{
}

Card FrameCompositor::card(const CameraRig::State& camera) const
{
    return cardFor(camera, m_output, m_style, m_sourceSize);
}

std::shared_ptr<const Picture> FrameCompositor::compose(const FrameLayers& layers)
{
    FrameRecipe recipe = frameRecipe(layers, m_output, m_style, m_sourceSize);
    const bool sameBase = m_last && m_last->source == layers.source.identity()
                          && m_last->recipe.card == recipe.card
                          && m_last->recipe.blur == recipe.blur;
    if (sameBase && m_last->recipe == recipe)
        return m_last->picture;

    const std::shared_ptr<Picture> picture = m_pool.acquire();
    Drawn drawn = {.source = layers.source.identity(), .picture = picture};
    if (sameBase) {
        drawn.withoutOverlays = std::move(m_last->withoutOverlays);
        if (!drawn.withoutOverlays) {
            const std::shared_ptr<Picture> base = m_pool.acquire();
            m_cardPainter.paint(layers.source, recipe.card, recipe.blur, base->view());
            drawn.withoutOverlays = base;
        }
        copy(drawn.withoutOverlays->view(), picture->view());
    } else {
        m_cardPainter.paint(layers.source, recipe.card, recipe.blur, picture->view());
    }
    m_overlayPainter.paint(recipe, layers.webcam, picture->view());
    drawn.recipe = std::move(recipe);
    m_last = std::move(drawn);
    return picture;
}

} // namespace zento
