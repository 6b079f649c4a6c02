#pragma once

#include "ZentoCapture/DesktopServices.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zento {

enum class Health : unsigned char { Good, Limited, Missing };

/// One thing that was looked at.
struct Finding {
    std::string subject; // "display"
    Health health = Health::Good;
    std::string what;   // what there is
    std::string advice; // what to do about it; empty where nothing is to be done
};

/// Everything that is looked at.
struct Circumstances {
    DesktopServices services;
    std::vector<std::string> missingEncoders;
    std::vector<std::string> missingTypefaces;
    bool hasSpeechModel = false;
    std::filesystem::path recordings;      // the folder they go to
    std::optional<std::int64_t> freeBytes; // there; absent: the system does not say
};

/// A finding on each of them, always in the same order. Pure.
std::vector<Finding> diagnose(const Circumstances& all);

/// Whether the screen can be recorded at all.
bool canRecord(const Circumstances& circumstances);

/// One line: the health, the subject, what there is and what to do.
std::string line(const Finding& finding);

} // namespace zento
