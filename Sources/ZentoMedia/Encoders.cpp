#include "ZentoMedia/Encoders.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace zento {

std::vector<std::string> missingEncoders()
{
    std::vector<std::string> missing;
    for (const char* const name : {"prores_aw", "libx264", "aac"}) {
        if (avcodec_find_encoder_by_name(name) == nullptr)
            missing.emplace_back(name);
    }
    return missing;
}

} // namespace zento
