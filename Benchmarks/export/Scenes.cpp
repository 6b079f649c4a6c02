#include "Scenes.h"

#include "ZentoEngine/EditPlanner.h"

#include <cmath>

namespace zento::bench {

namespace {

constexpr double kFramesPerSecond = 60;

} // namespace

EditPlan stillPlan(const SessionBundle& bundle, Stretch stretch, int width, int height)
{
    EditPlan plan;
    plan.output = {.width = width, .height = height, .fps = kFramesPerSecond};
    const double scale = height / 1080.0;
    plan.style.cornerRadius *= scale;
    plan.style.shadowRadius *= scale;
    plan.style.shadowOffsetY *= scale;
    plan.style.cursorAutoHide = false;
    plan.timeRemap = {{stretch.begin, stretch.end, 1}};
    const Vec2 middle = {bundle.meta.pixelWidth / 2.0, bundle.meta.pixelHeight / 2.0};
    plan.camera = {{.tOut = 0, .center = middle, .zoom = 1}};
    return plan;
}

EditPlan movingPlan(const SessionBundle& bundle, Stretch stretch, int width, int height)
{
    EditPlan plan = stillPlan(bundle, stretch, width, height);
    const Vec2 middle = plan.camera.front().center;
    plan.camera.clear();
    for (double t = 0; t < stretch.end - stretch.begin; t += 1 / kFramesPerSecond) {
        const Vec2 away = {0.2 * std::cos(1.3 * t), 0.2 * std::sin(2.1 * t)};
        plan.camera.push_back(
            {.tOut = t,
             .center = {middle.x * (1 + away.x), middle.y * (1 + away.y)},
             .zoom = 1 + kZoomDepth * std::sin(kZoomRate * t)});
    }
    return plan;
}

EditPlan withMotionBlur(EditPlan plan)
{
    plan.style.motionBlur = true;
    return plan;
}

EditPlan withWebcam(EditPlan plan, const SessionBundle& bundle, WebcamLook look)
{
    plan.webcam = WebcamPlan{
        .file = bundle.webcamURL().string(),
        .offset = bundle.meta.webcamOffset.value_or(0),
        .enhance = look != WebcamLook::Plain,
        .blurBackground = look == WebcamLook::BlurredBackground};
    return plan;
}

EditPlan plannedFilm(const SessionBundle& bundle)
{
    EditPlanner::PlanInput input;
    input.events = bundle.events;
    input.meta = bundle.meta;
    input.output = {.width = 1920, .height = 1080, .fps = kFramesPerSecond};
    EditPlan plan = EditPlanner::plan(input);
    plan.sfx.clear();
    return plan;
}

} // namespace zento::bench
