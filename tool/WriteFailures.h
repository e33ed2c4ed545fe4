// Writing a preset back and telling of a failure.
#pragma once

#include <string>

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;

/// Writes the preset to its file. Where that fails the answer is the line that standard error is to
/// show, else nothing.
std::string writeAndTell(Preset& preset);

/// The line itself, with the result code and the preset.
std::string writeFailure(const Preset& preset, OSErr result);

}  // namespace cairnset
