// Reporting that a preset could not be written.
#pragma once

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;

/// Writes a line on standard error with the result code and the preset, which is called `name`
/// there, where one is given; for noErr nothing.
void reportWriteFailure(const Preset& preset, OSErr result, const char* name = nullptr);

}  // namespace cairnset
