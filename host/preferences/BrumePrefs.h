// The instrument's preferences, as far as they say where the preset library is.
//
// In the user's preferences folder (host/files/FileSystemHelpers.h) the instrument keeps a folder
// "Olvan Preferences", and in it
//
//   Olvan Items   an alias file, on this host a symbolic link, to the library folder; a real folder
//                 of that name is the library itself
//   Timeout       when the instrument last ran (host/preferences/TimeoutFile.h)
//
// Nothing else is ever written. When the library cannot be found, an alert (host/terminal/Alerts.h)
// says why, and the object stays uninitialised.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

#include "host/HostTypes.h"
#include "host/terminal/Chooser.h"

namespace cairnset {

class BrumePrefs {
 public:
  BrumePrefs() = default;
  virtual ~BrumePrefs() = default;

  /// Finds the library: makes the user's preferences folder and "Olvan Preferences" where they are
  /// missing, follows the alias, and asks the user where it is missing too or leads nowhere. Does
  /// nothing once the object is initialised. Anything but a folder that bears the name "Olvan
  /// Preferences" gives way to one; of a link, which is an alias and no folder, only the link goes.
  /// A path beyond 511 bytes is a failure, never cut.
  void initPrefs(void* unused = nullptr);

  bool isInitialised() const { return _initialised != 0; }
  /// The library's path and reference and the path of "Olvan Preferences"; null before a successful
  /// initPrefs. They belong to the object.
  char* getItemsPath() { return isInitialised() ? _items_path : nullptr; }
  char* getPrefsPath() { return isInitialised() ? _prefs_path : nullptr; }
  FSRef* getItemsFSRef() { return isInitialised() ? &_items_ref : nullptr; }

  /// Asks for the library folder and makes the alias to it in the folder that initPrefs found, in
  /// place of what bears the alias's name, save a folder that is not empty. The items reference is
  /// then the alias, not what it leads to. False, after an alert, where the user cancels or the
  /// alias cannot be made.
  bool askForAudioLibraryLocation(void* unused = nullptr);

  /// Asks for another library. 0 where that fails, else the result of making the items path, which
  /// is the path of the alias: it is the next initPrefs of a new object that follows it.
  OSErr userSelectNewItemsPath();

  /// Asks for a file "BrumeKeymaps.txt". A chosen file is opened once, and the object is then
  /// initialised, also where opening failed and although no library was looked for: getItemsFSRef
  /// may then return an invalid reference. On purpose.
  void askForBrumeKeymapsTxtLocation();

  /// Not implemented; an alert says so.
  void writePrefs();
  void readPrefs();

  // The last run. Only an initialised object touches the file, whose errors are ignored.

  /// Takes the time from "Timeout". A missing file is made, empty, and is 0, as is one of fewer
  /// than 44 bytes; one that cannot be read leaves the time as it is.
  void readLastRunTime();
  /// Makes the time now, and writes it.
  void resetLastRunTime();
  /// Seconds modulo 2^32, so that a last run 5 seconds ahead of the clock returns 2^32 - 5.
  /// Differences are clamped to -2^31 and 2^32 - 1 first.
  unsigned long getSecondsSinceLastRun() const;

  /// Shows visible folders and files named exactly "BrumeKeymaps.txt", and all there is outside the
  /// list of items or not given as an FSSpec. `info` may be null for a file.
  static bool navFilterProc(AEDesc* item, void* info, void* callBackUD, short filterMode);
  /// Does nothing.
  static void navEventProc(long event, NavCBRec* parameters, void* callBackUD);

  static inline const NavEventUPP navEventUPP = navEventProc;
  static inline const NavObjectFilterUPP navFilterUPP = navFilterProc;

 private:
  static constexpr std::size_t kPathSize = 512;

  OSErr openPrefsFolder();
  OSErr makeItemsAlias(const FSRef& target);

  FSRef _items_ref;
  FSRef _prefs_ref;
  char _items_path[kPathSize] = {};
  char _prefs_path[kPathSize] = {};
  std::uint32_t _initialised = 0;
  std::time_t _last_run_time = 1;
  [[maybe_unused]] std::int32_t _spare = -1;  // the instrument's own
};

}  // namespace cairnset
