#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Diagnosis.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Desktop/DiskSpace.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoImaging/Font.h"
#include "ZentoIntelligence/SpeechEngine.h"
#include "ZentoMedia/Encoders.h"

#include <iostream>

namespace zento {

void doctor(std::span<const std::string_view> words)
{
    Arguments(words, {}).expectNone();
    const Circumstances circumstances{
        .services = desktopServices(),
        .missingEncoders = missingEncoders(),
        .missingTypefaces = missingTypefaces(),
        .hasSpeechModel = canUseSphinx(),
        .recordings = sessionsFolder(),
        .freeBytes = freeSpace(sessionsFolder())};
    for (const Finding& finding : diagnose(circumstances)) {
        std::cout << line(finding) << '\n';
    }
    if (!canRecord(circumstances)) {
        throw Error(ErrorCode::kNoDisplay, "what is missing must be there before Zento can record");
    }
}

} // namespace zento
