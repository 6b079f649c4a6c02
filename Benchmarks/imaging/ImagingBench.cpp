// What the picture kernels cost, in milliseconds of processor time a frame, and how much faster
// that is than libswscale doing the job nearest to it (which has no sub-pixel placement). One
// thread; medians. Every job runs on the best processor target and on each lesser one.

#include "ProcessorTime.h"
#include "ZentoImaging/Blend.h"
#include "ZentoImaging/Convert.h"
#include "ZentoImaging/MotionBlur.h"
#include "ZentoImaging/Scale.h"
#include "ZentoImaging/Shadow.h"
#include "ZentoImaging/Sprite.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

extern "C" {
#include <libswscale/swscale.h>
}

namespace {

using namespace zento;

double median(const std::function<void(int)>& job)
{
    constexpr int kRuns = 41;
    return bench::medianMilliseconds(kRuns, job);
}

struct FreeScaler {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
using Swscale = std::unique_ptr<SwsContext, FreeScaler>;

struct Frame10 {
    int width;
    int height;
    std::vector<std::uint16_t> samples;
    YuvPlanes<std::uint16_t> planes;

    Frame10(int w, int h)
        : width(w)
        , height(h)
        , samples(std::size_t(w) * std::size_t(h) * 2)
    {
        std::mt19937 random(7);
        for (std::uint16_t& s : samples) {
            s = static_cast<std::uint16_t>(64 + random() % 800);
        }
        std::uint16_t* at = samples.data();
        planes.y = {at, w, h, w};
        planes.cb = {at + std::ptrdiff_t(w) * h, w / 2, h, w / 2};
        planes.cr = {at + std::ptrdiff_t(w) * h * 3 / 2, w / 2, h, w / 2};
    }
};

struct Job {
    std::string name;
    std::function<void(int)> run;
    double swscale = 0; // its milliseconds; 0 where it has no such job
};

double swscaleScaling(const Frame10& source, int width, int height)
{
    const Swscale context(sws_getContext(
        source.width,
        source.height,
        AV_PIX_FMT_YUV422P10LE,
        width,
        height,
        AV_PIX_FMT_YUV420P,
        SWS_BICUBIC,
        nullptr,
        nullptr,
        nullptr));
    Picture out(width, height, Layout::Yuv420);
    const auto bytes = [](const Plane<std::uint16_t>& plane) {
        return reinterpret_cast<const std::uint8_t*>(plane.data);
    };
    return median([&](int) {
        const std::uint8_t* from[4] = {
            bytes(source.planes.y), bytes(source.planes.cb), bytes(source.planes.cr), nullptr};
        const int fromStride[4] = {source.width * 2, source.width, source.width, 0};
        std::uint8_t* to[4] = {out.plane(0).data, out.plane(1).data, out.plane(2).data, nullptr};
        const int toStride[4] = {
            int(out.plane(0).stride), int(out.plane(1).stride), int(out.plane(2).stride), 0};
        sws_scale(context.get(), from, fromStride, 0, source.height, to, toStride);
    });
}

double swscaleConversion(const std::vector<std::uint8_t>& pixels, Frame10& out)
{
    const Swscale context(sws_getContext(
        out.width,
        out.height,
        AV_PIX_FMT_BGR0,
        out.width,
        out.height,
        AV_PIX_FMT_YUV422P10LE,
        SWS_BICUBIC,
        nullptr,
        nullptr,
        nullptr));
    const auto bytes = [](const Plane<std::uint16_t>& plane) {
        return reinterpret_cast<std::uint8_t*>(plane.data);
    };
    return median([&](int) {
        const std::uint8_t* from[4] = {pixels.data(), nullptr, nullptr, nullptr};
        const int fromStride[4] = {out.width * 4, 0, 0, 0};
        std::uint8_t* to[4] = {
            bytes(out.planes.y), bytes(out.planes.cb), bytes(out.planes.cr), nullptr};
        const int toStride[4] = {out.width * 2, out.width, out.width, 0};
        sws_scale(context.get(), from, fromStride, 0, out.height, to, toStride);
    });
}

YuvPlanes<const std::uint16_t> constant(const YuvPlanes<std::uint16_t>& planes)
{
    return planes;
}

/// A camera that moves and zooms a little every frame: all tables are built anew.
void addScaling(std::vector<Job>& jobs, const std::string& name, int width, int height)
{
    auto source = std::make_shared<Frame10>(width, height);
    auto out = std::make_shared<Picture>(1920, 1080, Layout::Yuv420);
    auto scaler = std::make_shared<PictureScaler>();
    const double base = 1700.4 / width;
    const auto placement = [=](int i) {
        const double scale = base * (1 + 1e-5 * i);
        return PicturePlacement{{109.8 + 0.13 * i, 60.3 + 0.07 * i}, scale, scale};
    };
    const auto window = [=](const PicturePlacement& p) {
        return Rect{p.origin.x, p.origin.y, width * p.scaleX, height * p.scaleY};
    };
    jobs.push_back(
        {name,
         [=](int i) {
             const PicturePlacement p = placement(i);
             drawScaled(*scaler, constant(source->planes), p, out->view(), window(p));
         },
         swscaleScaling(*source, 1700, 1700 * height / width / 2 * 2)});
    jobs.push_back(
        {name + ", of which tables",
         [=](int i) {
             const PicturePlacement p = placement(i);
             scaler->prepare(constant(source->planes), p, out->view(), window(p));
         },
         0});
}

void addConversion(std::vector<Job>& jobs, const std::string& name, int width, int height)
{
    auto pixels =
        std::make_shared<std::vector<std::uint8_t>>(std::size_t(width) * std::size_t(height) * 4);
    std::mt19937 random(3);
    std::ranges::generate(*pixels, [&] { return static_cast<std::uint8_t>(random()); });
    auto out = std::make_shared<Frame10>(width, height);
    const double swscale = swscaleConversion(*pixels, *out);
    jobs.push_back(
        {name,
         [=](int) {
             convert(
                 BgraView{pixels->data(), width, height, std::ptrdiff_t{4} * width}, out->planes);
         },
         swscale});
}

void addBlending(std::vector<Job>& jobs)
{
    auto canvas = std::make_shared<Picture>(1920, 1080, Layout::Yuv420);
    auto other = std::make_shared<Picture>(1920, 1080, Layout::Yuv420);
    jobs.push_back({"copy 1080p", [=](int) { copy(other->view(), canvas->view()); }, 0});
    auto mask = std::make_shared<std::vector<std::uint8_t>>(1920, std::uint8_t{90});
    jobs.push_back(
        {"constant through a mask, 1080p luma",
         [=](int) {
             for (int y = 0; y < 1080; ++y) {
                 blendConstant(canvas->plane(0).row(y), mask->data(), 40, 1920);
             }
         },
         0});
    auto cache = std::make_shared<ShadowCache>();
    jobs.push_back(
        {"shadow of a moving card, whole, 1080p",
         [=](int i) {
             const RoundedRect card{{110 + 0.13 * i, 84, 1700.4, 956.5}, 24};
             drawShadow(canvas->view(), card, 30, Color::gray(0, 0.45), *cache);
         },
         0});
    Canvas pointer(192, 288);
    pointer.fill(Path().ellipse({20, 20, 150, 240}), Color{});
    auto sprite = std::make_shared<Sprite>(pointer, Layout::Yuv420);
    jobs.push_back(
        {"pointer 192 x 288 to 56 high, moving",
         [=](int i) { drawSprite(canvas->view(), *sprite, {400 + 0.3 * i, 300}, 56.0 / 288, 1); },
         0});
    Canvas chip(520, 64);
    chip.fill(Path().roundedRect(chip.bounds(), 30), Color::gray(0, 0.7));
    auto placed = std::make_shared<PlacedSprite>(Sprite(chip, Layout::Yuv420), Vec2{700, 960});
    jobs.push_back({"chip 520 x 64, placed", [=](int) { placed->draw(canvas->view(), 0.8); }, 0});
}

/// The strongest a film asks for.
void addMotionBlur(std::vector<Job>& jobs)
{
    auto canvas = std::make_shared<Picture>(1920, 1080, Layout::Yuv420);
    const auto add = [&](const std::string& name, const std::function<void(int)>& run) {
        jobs.push_back({name, run, 0});
    };
    for (const double degrees : {0.0, 33.0, 90.0}) {
        const double angle = degrees * 3.14159265 / 180;
        const Vec2 reach = {18 * std::cos(angle), 18 * std::sin(angle)};
        add("directional blur, radius 18 at " + std::to_string(int(degrees)) + " degrees, 1080p",
            [=](int) { directionalBlur(canvas->view(), reach); });
    }
    add("directional blur, radius 6 at 57 degrees, 1080p",
        [=](int) { directionalBlur(canvas->view(), {3.3, 5}); });
    add("zoom blur of 8 at a third of the height, 1080p",
        [=](int) { zoomBlur(canvas->view(), {960, 540}, 8.0 / 360); });
}

void measure(const std::vector<Job>& jobs, const char* target)
{
    std::printf("%s\n", target);
    for (const Job& job : jobs) {
        const double own = median(job.run);
        std::printf("  %-44s %8.3f ms", job.name.c_str(), own);
        if (job.swscale > 0) {
            std::printf("   swscale %8.3f ms   %5.2f x", job.swscale, job.swscale / own);
        }
        std::printf("\n");
    }
}

} // namespace

int main(int count, char** arguments)
{
    const bool all = count > 1 && std::string(arguments[1]) == "--all";
    std::vector<Job> jobs;
    addScaling(jobs, "scale 1920 x 1080 4:2:2 10 bit to 1700", 1920, 1080);
    addScaling(jobs, "scale 2880 x 1800 4:2:2 10 bit to 1700", 2880, 1800);
    addConversion(jobs, "BGRA 1920 x 1080 to 4:2:2 10 bit", 1920, 1080);
    addConversion(jobs, "BGRA 2880 x 1800 to 4:2:2 10 bit", 2880, 1800);
    addBlending(jobs);
    addMotionBlur(jobs);
    const std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
    for (const std::int64_t target : targets) {
        if (all || target == targets.front() || target == HWY_AVX2) {
            hwy::SetSupportedTargetsForTest(target);
            hwy::GetChosenTarget().Update(hwy::SupportedTargets());
            measure(jobs, hwy::TargetName(target));
            hwy::SetSupportedTargetsForTest(0);
        }
    }
    return 0;
}
