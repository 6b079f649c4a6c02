#include "ZentoRender/PersonModel.h"

// The assembler reads the file: 438 KB of numbers in a source would take the compiler seconds.
asm(".pushsection .rodata\n"
    ".balign 64\n"
    "zentoPersonModelBegin:\n"
    ".incbin \"" ZENTO_PERSON_MODEL "\"\n"
    "zentoPersonModelEnd:\n"
    ".byte 0\n"
    ".popsection\n");

namespace zento {
namespace {

extern "C" const char kModelBegin[] asm("zentoPersonModelBegin");
extern "C" const char kModelEnd[] asm("zentoPersonModelEnd");

} // namespace

std::span<const char> personModel()
{
    return {kModelBegin, kModelEnd};
}

} // namespace zento
