#include "Zento/Commands/RecordDemo.h"

#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Recording.h"
#include "Zento/Demo/DemoActor.h"
#include "Zento/Demo/DemoStage.h"
#include "Zento/Demo/DemoTracks.h"
#include "ZentoCore/Error.h"

#include <iostream>

namespace zento {

void recordDemo(const std::filesystem::path& bundle, Interruption& interruption)
{
    std::cerr << "Setting the stage: a display of its own with two programs.\n";
    const DemoStage stage(interruption.token());
    stage.adoptEnvironment();
    const auto script = demoScript();
    DemoActor actor(stage.display(), stage.accessibilityAddress());
    awaitCurtain(script, actor, interruption.token());
    const auto desktop = openDesktop(stage.display());
    std::cerr << "Recording less than half a minute of work.\n";
    Recording recording(bundle, *desktop, Target::Display{}, Recording::Sources{}, interruption);
    perform(script, actor, interruption.token());
    if (interruption.token().stop_requested()) {
        throw Error(ErrorCode::kDemoStopped, "the demo was stopped before its end");
    }
    recording.finish();
    addDemoTracks(bundle, actor.spoken(), recording.epoch(), interruption.token());
}

} // namespace zento
