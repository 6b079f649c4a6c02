#include "DemoRecording.h"

#include "ChildRun.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/RecordDemo.h"

#include <cstdio>

namespace zento::bench {

std::filesystem::path demoRecording(const std::filesystem::path& folder)
{
    const std::filesystem::path bundle = folder / "demo.zento";
    if (std::filesystem::exists(bundle))
        return bundle;
    std::filesystem::create_directories(folder);
    const std::filesystem::path unfinished = folder / "unfinished.zento";
    std::filesystem::remove_all(unfinished);
    std::fprintf(stderr, "Recording half a minute of work; it is kept for the next time.\n");
    runInChild(
        [&](auto) {
            Interruption interruption;
            recordDemo(unfinished, interruption);
        },
        {});
    std::filesystem::rename(unfinished, bundle);
    return bundle;
}

} // namespace zento::bench
