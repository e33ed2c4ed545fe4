// The reports that only read: the tree, the references, and who uses what. All on standard output,
// about the session's library; without one they have nothing to tell of.
#pragma once

namespace cairnset {

/// Prints the folder trees of velocity maps, effects, programs and sessions.
void listPresets();

/// Prints a line for each reference, with whether the library would resolve it: case does not
/// count. Answers kMissingReferences where one does not, else kSuccess.
int listAllDependencies();

/// Prints each velocity map, effects preset and program, and below it those that name it. Only the
/// exact name counts here, unlike for listAllDependencies; that is meant.
void listParents();

}  // namespace cairnset
