#include "Fuzz/Films.h"

#include "TestSupport/NumberedMovie.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoRender/OfflineExporter.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace zento {

namespace {

constexpr int kSide = 64;
constexpr double kLongest = 0.5; // seconds of film

constexpr const char* kScreen = "screen.mov";
constexpr const char* kWebcam = "webcam.mov";
constexpr const char* kMusic = "music.m4a";
constexpr const char* kImage = "background.png";

enum class Role : unsigned char { Screen, Webcam, Music, Image, Plan };

EditPlan shortPlan(const std::filesystem::path& folder, Role role)
{
    EditPlan plan;
    plan.output = {.width = kSide, .height = kSide, .fps = 24};
    plan.timeRemap = {{.sourceStart = 0, .sourceEnd = 0.3}};
    plan.clicks = {{.t = 0.1, .pos = {20, 20}}};
    plan.cursor = {
        {.t = 0, .pos = {10, 10}, .style = "arrow"}, {.t = 0.3, .pos = {40, 30}, .style = "iBeam"}};
    if (role == Role::Webcam)
        plan.webcam = WebcamPlan{.file = kWebcam, .enhance = true};
    if (role == Role::Music)
        plan.music = MusicPlan{.file = kMusic};
    if (role == Role::Image)
        plan.style.background = Background::Image{(folder / kImage).string()};
    return plan;
}

/// A film of any size and length is allowed; this one is to be done in a moment.
EditPlan madeSmall(EditPlan plan)
{
    plan.output.width = std::min(plan.output.width, kSide);
    plan.output.height = std::min(plan.output.height, kSide);
    plan.output.fps = std::min(plan.output.fps, 60.0);
    plan.timeRemap.resize(std::min<std::size_t>(plan.timeRemap.size(), 4));
    for (SpeedSegment& segment : plan.timeRemap)
        segment.sourceEnd =
            std::min(segment.sourceEnd, segment.sourceStart + kLongest * segment.speed);
    for (auto* card : {&plan.titleCard, &plan.endCard})
        if (*card)
            (*card)->duration = std::min((*card)->duration, kLongest);
    return plan;
}

} // namespace

FilmExports::FilmExports(std::filesystem::path folder)
    : m_folder(std::move(folder))
{
}

void FilmExports::exportAnything(std::string_view input)
{
    if (input.empty())
        return;
    const auto role = static_cast<Role>(static_cast<unsigned char>(input.front()) % 5);
    const std::string_view content = input.substr(1);
    const std::filesystem::path film = m_folder / "film.mp4";
    std::filesystem::remove(film);
    try {
        if (role == Role::Screen)
            writeFile(m_folder / kScreen, content);
        else
            test::writeNumberedRecording(
                m_folder / kScreen, {kSide, kSide}, test::countedFrames(1, 6, 24));
        if (role == Role::Webcam)
            writeFile(m_folder / kWebcam, content);
        if (role == Role::Music)
            writeFile(m_folder / kMusic, content);
        if (role == Role::Image)
            writeFile(m_folder / kImage, content);
        const EditPlan plan =
            role == Role::Plan ? madeSmall(decodePlan(content)) : shortPlan(m_folder, role);
        OfflineExporter(SessionBundle{.url = m_folder}, plan).exportFilm(film);
    } catch (const Error&) {
        if (std::filesystem::exists(film))
            std::abort();
    }
}

} // namespace zento
