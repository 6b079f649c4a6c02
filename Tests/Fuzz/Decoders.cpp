#include "Fuzz/Decoders.h"

#include "Zento/Model/AppSettings.h"
#include "ZentoCore/Analyses.h"
#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/Overrides.h"
#include "ZentoCore/SessionBundle.h"

#include <array>
#include <cstdlib>

namespace zento {

namespace {

template <auto decode, auto encode>
void roundTrip(std::string_view json)
{
    const auto value = decode(json);
    if (decode(encode(value)) != value) {
        std::abort();
    }
}

constexpr std::array kDecoders{
    roundTrip<decodeMeta, encodeMeta>,
    roundTrip<JSONL::decode, JSONL::encode>,
    roundTrip<decodePlan, encodePlan>,
    roundTrip<decodeOverrides, encodeOverrides>,
    roundTrip<decodeTranscript, encodeTranscript>,
    roundTrip<decodeFramingHints, encodeFramingHints>,
    roundTrip<decodeSemanticNotes, encodeSemanticNotes>,
    roundTrip<decodeSettings, encodeSettings>,
    // What is saved leaves out times that count as unset, so these need not come back equal.
    +[](std::string_view json) { encodeSavedOverrides(decodeSavedOverrides(json)); },
};

} // namespace

void decodeAnything(std::string_view input)
{
    if (input.empty()) {
        return;
    }
    const auto choice = static_cast<unsigned char>(input.front()) % kDecoders.size();
    try {
        kDecoders.at(choice)(input.substr(1));
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): a refusal with a sentence is fine
    }
}

} // namespace zento
