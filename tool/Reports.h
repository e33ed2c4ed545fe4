// Reports on the session's library: its tree and references, on standard output, and failed writes.
// Without a library they print nothing.
#pragma once

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;

/// Prints the folder trees of velocity maps, effects, programs and sessions.
void listPresets();

/// Prints a line for each reference, with whether it resolves, case ignored. Returns
/// kMissingReferences if one does not, else kSuccess.
int listAllDependencies();

/// Prints each velocity map, effects preset and program, and below it those that name it. Only the
/// exact name counts, unlike for listAllDependencies, on purpose.
void listParents();

/// Prints a line on standard error with the result code, what was being done ("writing") and the
/// preset, under `name` if it is not null. Does nothing for noErr.
void reportFailure(const char* doing, const Preset& preset, OSErr result,
                   const char* name = nullptr);

}  // namespace cairnset
