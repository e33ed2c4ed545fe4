// What is reported of the session's library: the tree, the references, and who uses what, on
// standard output; and what could not be written. Without a library there is nothing to report.
#pragma once

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;

/// Prints the folder trees of velocity maps, effects, programs and sessions.
void listPresets();

/// Prints a line for each reference, with whether the library would resolve it: case does not
/// count. Answers kMissingReferences where one does not, else kSuccess.
int listAllDependencies();

/// Prints each velocity map, effects preset and program, and below it those that name it. Only the
/// exact name counts here, unlike for listAllDependencies; that is meant.
void listParents();

/// Writes a line on standard error with the result code and the preset, which is called `name`
/// there, where one is given; for noErr nothing.
void reportWriteFailure(const Preset& preset, OSErr result, const char* name = nullptr);

}  // namespace cairnset
