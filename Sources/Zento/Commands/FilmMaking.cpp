#include "Zento/Commands/FilmMaking.h"

#include "Zento/Commands/ProgressBar.h"
#include "Zento/Desktop/DesktopImage.h"
#include "Zento/Model/PlanSources.h"
#include "ZentoCore/FileIO.h"
#include "ZentoRender/OfflineExporter.h"

#include <utility>

namespace zento {

std::filesystem::path makeFilm(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const std::filesystem::path& film,
    std::stop_token stop)
{
    const auto input =
        gatherPlanInput(bundle, settings, loadSavedOverrides(bundle), desktopImage());
    const EditPlan plan = EditPlanner::plan(input);
    writeFile(bundle.editPlanURL(), encodePlan(plan));
    ProgressBar bar("Rendering");
    OfflineExporter(bundle, plan)
        .exportFilm(
            film,
            [&](const OfflineExporter::Progress& progress) {
                bar.show(static_cast<double>(progress.frame) / progress.totalFrames);
            },
            std::move(stop));
    return film;
}

} // namespace zento
