#include "Zento/Commands/FilmMaking.h"

#include "Zento/Commands/BundleMusic.h"
#include "Zento/Commands/ProgressBar.h"
#include "Zento/Desktop/DesktopImage.h"
#include "Zento/Model/PlanSources.h"
#include "Zento/Model/TextCards.h"
#include "ZentoCore/FileIO.h"
#include "ZentoRender/GIFExporter.h"
#include "ZentoRender/OfflineExporter.h"

#include <exception>
#include <optional>
#include <string>
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

} // namespace

std::filesystem::path makeFilm(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const std::filesystem::path& film,
    const std::stop_token& stop)
{
    const SavedOverrides edits = loadSavedOverrides(bundle);
    EditPlanner::PlanInput input = gatherPlanInput(bundle, settings, edits, desktopImage());
    input.music = bundleMusic(bundle, edits, stop);
    EditPlan plan = EditPlanner::plan(input);
    FilmCards cards = currentCards(settings, bundle.meta, loadVideoCopy(bundle));
    plan.titleCard = std::move(cards.title);
    plan.endCard = std::move(cards.end);
    PlanFile planFile(bundle.editPlanURL(), plan);
    ProgressBar bar("Rendering");
    OfflineExporter(bundle, plan)
        .exportFilm(
            film,
            [&](const OfflineExporter::Progress& progress) {
                bar.show(static_cast<double>(progress.frame) / progress.totalFrames);
            },
            stop);
    planFile.keep();
    return film;
}

void makeGif(
    const std::filesystem::path& film,
    const std::filesystem::path& gif,
    const std::stop_token& stop)
{
    constexpr double kFps = 12;
    constexpr double kMaxWidth = 960; // pixels
    ProgressBar bar("Writing the GIF");
    GIFExporter::exportGif(
        film, gif, kFps, kMaxWidth, [&](double fraction) { bar.show(fraction); }, stop);
}

} // namespace zento
