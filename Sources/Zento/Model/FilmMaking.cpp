#include "Zento/Model/FilmMaking.h"

#include "Zento/Model/PlanSources.h"
#include "Zento/Model/TextCards.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoIntelligence/FrameAnalyzer.h"
#include "ZentoIntelligence/NarrationTranscriber.h"
#include "ZentoRender/GIFExporter.h"
#include "ZentoRender/OfflineExporter.h"

#include <cmath>
#include <exception>
#include <system_error>
#include <utility>

namespace zento {

namespace {

/// The plan of the render under way, in its bundle. A render that fails leaves the bundle as it
/// was.
class PlanFile {
public:
    PlanFile(std::filesystem::path path, const EditPlan& plan)
        : m_path(std::move(path))
    {
        std::error_code ignored;
        if (std::filesystem::exists(m_path, ignored)) {
            m_before = readFile(m_path);
        }
        writeFile(m_path, encodePlan(plan));
    }

    ~PlanFile()
    {
        if (!m_isKept) {
            putBack();
        }
    }

    PlanFile(const PlanFile&) = delete;
    PlanFile& operator=(const PlanFile&) = delete;

    void keep() { m_isKept = true; }

private:
    void putBack() const noexcept
    {
        try {
            if (m_before) {
                writeFile(m_path, *m_before);
            } else {
                std::filesystem::remove(m_path);
            }
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the render's own
                                          // failure is on its way to the user
        }
    }

    std::filesystem::path m_path;
    std::optional<std::string> m_before;
    bool m_isKept = false;
};

/// What a hurried user has not waited for; it is left in the bundle.
void completeAnalyses(const SessionBundle& bundle, const std::stop_token& stop)
{
    static_cast<void>(NarrationTranscriber::loadOrTranscribe(bundle, stop));
    try {
        static_cast<void>(FrameAnalyzer::loadOrAnalyze(bundle, stop));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): the film is planned without
    }
}

} // namespace

std::optional<EditPlanner::MusicInfo> readableMusic(
    const SessionBundle& bundle,
    const SavedOverrides& edits,
    const std::function<void(const std::string&)>& onLeftOut,
    const std::stop_token& stop)
{
    try {
        return analyzedMusic(bundle, edits, stop);
    } catch (const Error& error) {
        if (stop.stop_requested()) {
            throw;
        }
        if (onLeftOut) {
            onLeftOut(error.what());
        }
        return std::nullopt;
    }
}

void renderFilm(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const std::filesystem::path& film,
    const std::optional<std::string>& desktopImage,
    const FilmReports& reports,
    const std::stop_token& stop)
{
    completeAnalyses(bundle, stop);
    const SavedOverrides edits = loadSavedOverrides(bundle);
    EditPlanner::PlanInput input = gatherPlanInput(bundle, settings, edits, desktopImage);
    input.music = readableMusic(bundle, edits, reports.onMusicLeftOut, stop);
    EditPlan plan = planAtLevels(input, settings);
    FilmCards cards = currentCards(settings, bundle.meta, loadVideoCopy(bundle));
    plan.titleCard = std::move(cards.title);
    plan.endCard = std::move(cards.end);
    PlanFile planFile(bundle.editPlanURL(), plan);
    OfflineExporter(bundle, plan)
        .exportFilm(
            film,
            [&](const OfflineExporter::Progress& progress) {
                if (reports.onProgress) {
                    reports.onProgress({progress.frame, progress.totalFrames});
                }
            },
            stop);
    planFile.keep();
}

void renderGif(
    const std::filesystem::path& film,
    const std::filesystem::path& gif,
    const FilmReports& reports,
    const std::stop_token& stop)
{
    constexpr double kFps = 12;
    constexpr double kMaxWidth = 960; // pixels
    constexpr int kSteps = 1000;
    const auto onProgress = [&](double fraction) {
        if (reports.onProgress) {
            reports.onProgress({static_cast<int>(std::lround(fraction * kSteps)), kSteps});
        }
    };
    GIFExporter::exportGif(film, gif, kFps, kMaxWidth, onProgress, stop);
}

} // namespace zento
