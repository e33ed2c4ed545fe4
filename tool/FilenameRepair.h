// Names that Windows rejects: finding them, and renaming without breaking references.
#pragma once

namespace cairnset {

/// Null if the name is acceptable, else the corrected name, valid until the next call. Only the
/// first 255 bytes of a name count.
[[nodiscard]] const char* isIllegalFilename(const char* name);

/// Prints a line for each preset of the session with whether Windows accepts its name. Returns
/// kIncompatibleNames if it rejects one, else kSuccess.
int checkFilenames();

/// Renames each preset whose name Windows rejects, and rewrites those that named it. Returns
/// kReferencesNotWritten if one of these could not be written or was not loaded, or if a rename
/// failed for another reason than its name (reported on standard error; the rest goes on), else
/// kSuccess. Signals are held back until all is done; presets/Renames.h says what a
/// SIGKILL leaves.
int fixFilenames();

}  // namespace cairnset
