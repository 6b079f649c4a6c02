#include "ZentoRender/FrameCompositor.h"

#include "ZentoImaging/Convert.h"
#include "ZentoRender/BackgroundRenderer.h"

#include <utility>

namespace zento {

FrameCompositor::FrameCompositor(
    const OutputSpec& output, const StyleSpec& style, VideoSize sourceSize)
    : FrameCompositor(
          output,
          style,
          sourceSize,
          BackgroundRenderer::render(style.background, output.width, output.height))
{
}

FrameCompositor::FrameCompositor(
    const OutputSpec& output,
    const StyleSpec& style,
    VideoSize sourceSize,
    const Canvas& background)
    : m_output(output)
    , m_style(style)
    , m_sourceSize{static_cast<double>(sourceSize.width), static_cast<double>(sourceSize.height)}
    , m_cardPainter(toPicture(background, Layout::Yuv420), style)
    , m_overlayPainter(output)
    , m_textCardPainter(
          output, BackgroundRenderer::isLight(background) ? Ground::Light : Ground::Dark)
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

std::shared_ptr<const Picture> FrameCompositor::composeCard(const TextCard& card, double progress)
{
    const CardAppearance appearance = cardAppearance(card.duration, progress);
    if (m_lastCard && m_lastCard->card == card && m_lastCard->appearance == appearance)
        return m_lastCard->picture;
    const std::shared_ptr<Picture> picture = m_pool.acquire();
    copy(m_cardPainter.background().view(), picture->view());
    m_textCardPainter.paint(card, appearance, picture->view());
    m_lastCard = {card, appearance, picture};
    return picture;
}

void FrameCompositor::forgetLast()
{
    m_last.reset();
    m_lastCard.reset();
    m_overlayPainter.forgetLast();
}

} // namespace zento
