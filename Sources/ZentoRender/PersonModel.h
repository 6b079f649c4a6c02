#pragma once

#include <span>

namespace zento {

/// The network that finds a person, as an ONNX file: Assets/models/person.onnx, built into the
/// program.
std::span<const char> personModel();

} // namespace zento
