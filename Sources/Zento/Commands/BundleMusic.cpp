#include "Zento/Commands/BundleMusic.h"

#include "Zento/Model/PlanSources.h"
#include "ZentoCore/Error.h"

#include <iostream>

namespace zento {

std::optional<EditPlanner::MusicInfo>
bundleMusic(const SessionBundle& bundle, const SavedOverrides& edits, const std::stop_token& stop)
{
    try {
        return analyzedMusic(bundle, edits, stop);
    } catch (const Error& error) {
        if (stop.stop_requested()) {
            throw;
        }
        std::cerr << "zento: the film has no music: " << error.what() << '\n';
        return std::nullopt;
    }
}

} // namespace zento
