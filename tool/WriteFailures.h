// Writing a preset back and telling of a failure.
#pragma once

#include <iosfwd>

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;

/// Writes the preset to its file. Where that fails a line on `errors` says so, and the answer is
/// false.
bool writeAndReport(Preset& preset, std::ostream& errors);

/// The line itself, with the result code and the preset.
void reportWriteFailure(const Preset& preset, OSErr result, std::ostream& errors);

}  // namespace cairnset
