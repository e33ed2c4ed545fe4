// The one library that the program works on, and how it is found.
#pragma once

#include <cstddef>

namespace cairnset {

class BrumePrefs;
class PresetList;
class PresetManager;

/// How the program ends.
enum ExitStatus : int {
  kSuccess = 0,
  kNoPreferences = 1,          // the instrument's preferences do not lead to a library
  kPathNotResolved = 2,        // the -e path leads nowhere, or is too long
  kLibraryNotSetUp = 3,        // no "Presets" below the -e folder, and none could be made
  kIncompatibleNames = 10,     // -y found names that Windows rejects
  kMissingReferences = 11,     // -d found references that do not resolve
  kReferencesNotWritten = 20,  // -z could not write a preset that it relinked
  kReportNotWritten = 74,      // standard output did not take the report
};

// All null while there is no session. The manager and the preferences are owned; the lists are the
// manager's own.
extern PresetManager* _pm;
extern BrumePrefs* _prefs;  // null where the path was given with -e
extern PresetList* _v;      // velocity maps
extern PresetList* _e;      // effects
extern PresetList* _p;      // programs
extern PresetList* _s;      // sessions

/// The library's path as given with -e, or empty.
inline constexpr std::size_t kPathStringSize = 512;
extern char path_string[kPathStringSize];

/// Reads the library, after ending any session before: from path_string, or where that is empty
/// from where the preferences say. Answers kSuccess or why not, told on standard error; the lists
/// are null then.
[[nodiscard]] int instantiate();
/// Ends the session. Nothing is saved.
void deinstantiate();
/// Opens the library at path_string into the session's manager. The argument means nothing.
int PresetManagerFriendFunction(void* unused);

}  // namespace cairnset
