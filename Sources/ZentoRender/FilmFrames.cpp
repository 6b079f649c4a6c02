#include "ZentoRender/FilmFrames.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zento {
namespace {

double cardFrames(const std::optional<TextCard>& card, double fps)
{
    return card && card->duration > 0 ? std::round(card->duration * fps) : 0;
}

} // namespace

std::optional<FilmFrames> filmFrames(const EditPlan& plan, const RemapCurve& curve)
{
    const double fps = plan.output.fps;
    const double title = cardFrames(plan.titleCard, fps);
    const double main = std::max(std::floor(curve.outputDuration() * fps), 0.0);
    const double end = cardFrames(plan.endCard, fps);
    if (!(title + main + end <= std::numeric_limits<int>::max()))
        return std::nullopt;
    return FilmFrames{
        .title = static_cast<int>(title),
        .main = static_cast<int>(main),
        .end = static_cast<int>(end)};
}

} // namespace zento
