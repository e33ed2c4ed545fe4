// Names that Windows rejects: finding them, and renaming without breaking references.
#pragma once

namespace cairnset {

/// Null where the name is acceptable, else the corrected name, which stays valid until the next
/// call. Of a name longer than 255 bytes the first 255 count.
[[nodiscard]] const char* isIllegalFilename(const char* name);

/// Prints a line for each preset of the session, saying whether Windows would take its name.
/// Answers kIncompatibleNames where it would not take one, else kSuccess.
int checkFilenames();

/// Renames each preset whose name Windows rejects, and rewrites those that named it. Answers
/// kReferencesNotWritten where one of these could not be written (told on standard error; the rest
/// goes on), else kSuccess. Signals are held back until all is done; what a SIGKILL leaves
/// half-done is in presets/Renames.h.
int fixFilenames();

}  // namespace cairnset
