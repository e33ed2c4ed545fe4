// The one library that the program works on.
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
  kPathNotResolved = 2,        // the -e path cannot be resolved, or is too long
  kLibraryNotSetUp = 3,        // no "Presets" below the -e folder, and none could be made
  kIncompatibleNames = 10,     // -y found names that Windows rejects
  kMissingReferences = 11,     // -d found references that do not resolve
  kReferencesNotWritten = 20,  // -z could not write a preset that it relinked
  kChangeRefused = 30,         // a --rename or --relink, and with it all others
  kNotUnderstood = 64,         // the command line; nothing was loaded
  kOutOfMemory = 71,           // and ended on the spot, as if killed
  kReportNotWritten = 74,      // standard output could not be written
  kLibraryIsBusy = 75,         // another run held the library for too long; nothing was changed
};

// All null without a session, which owns the manager and the preferences; the lists are the
// manager's.
extern PresetManager* _pm;
extern BrumePrefs* _prefs;  // null if the path was given with -e
extern PresetList* _v;      // velocity maps
extern PresetList* _e;      // effects
extern PresetList* _p;      // programs
extern PresetList* _s;      // sessions

/// The library's path as given with -e, or empty.
inline constexpr std::size_t kPathStringSize = 512;
extern char path_string[kPathStringSize];

/// Whether the session may change presets after the load, which itself always may.
enum class Changes : bool { kNo, kYes };

/// Ends any session and loads the library at path_string or, if that is empty, the one that the
/// preferences name. Returns kSuccess, or another status after reporting the error on standard
/// error; the lists are then null.
///
/// From here on the library's folder is open, and the session works on it whatever its path comes
/// to lead to. It is locked against other runs: for the load or, with Changes::kYes, until the
/// session ends. Waits up to ten seconds for another run.
[[nodiscard]] int instantiate(Changes changes = Changes::kYes);
/// Loads the session's library again, as it is on the disk now. Without a session, or after a
/// failure, as instantiate.
[[nodiscard]] int reload();
/// Ends the session. Nothing is saved.
void deinstantiate();
/// Opens the library at path_string into the session's manager. The argument is ignored.
int PresetManagerFriendFunction(void* unused);

}  // namespace cairnset
