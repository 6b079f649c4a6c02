#pragma once

#include <string>

namespace zento::test {

/// A speech model in its real form, of one narrow layer each way with random weights: 8 MB. What it
/// hears is noise; that it is loaded, asked, stopped and refused is what can be tested with it.
std::string tinySpeechModel();

} // namespace zento::test
