#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Interruption.h"
#include "Zento/Commands/Subcommands.h"
#include "ZentoCapture/Recovery.h"

#include <iomanip>
#include <iostream>

namespace zento {

void recover(std::span<const std::string_view> words)
{
    const Arguments arguments(words, {});
    const std::string bundle = arguments.only("bundle");
    const Interruption interruption;
    const Recovery recovery = recover(std::filesystem::path(bundle), interruption.token());
    if (recovery.outcome == Recovery::Outcome::WasComplete) {
        std::cerr << "This recording is complete; there is nothing to recover.\n";
    } else {
        std::cerr << "Recovered " << std::fixed << std::setprecision(1) << recovery.duration
                  << " seconds, " << recovery.frameCount << " frames.\n";
    }
    for (const SideFile file : recovery.lost) {
        std::cerr << "There was nothing to recover in " << fileName(file) << "; it is removed.\n";
    }
    std::cout << bundle << '\n';
}

} // namespace zento
