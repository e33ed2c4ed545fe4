#include "tool/Session.h"

#include <iostream>

#include "host/files/FileManager.h"
#include "host/preferences/BrumePrefs.h"
#include "host/terminal/ReportText.h"
#include "presets/PresetManager.h"
#include "tool/Notes.h"

namespace cairnset {

PresetManager* _pm = nullptr;
BrumePrefs* _prefs = nullptr;
PresetList* _v = nullptr;
PresetList* _e = nullptr;
PresetList* _p = nullptr;
PresetList* _s = nullptr;
char path_string[kPathStringSize] = "";

int instantiate() {
  deinstantiate();
  _pm = new PresetManager(nullptr);
  if (path_string[0] != '\0') {
    if (const int status = PresetManagerFriendFunction(nullptr); status != kSuccess) return status;
  } else {
    _prefs = new BrumePrefs;
    _prefs->initPrefs(nullptr);
    if (!_prefs->isInitialised()) {
      std::cerr << "Preferences were not inited!\n";
      return kNoPreferences;
    }
    _pm->openAllPresets(_prefs);
  }
  _v = &_pm->velocityMaps();
  _e = &_pm->effects();
  _p = &_pm->programs();
  _s = &_pm->sessions();
  return kSuccess;
}

void deinstantiate() {
  delete _prefs;
  delete _pm;
  _prefs = nullptr;
  _pm = nullptr;
  _v = _p = _s = _e = nullptr;
}

int PresetManagerFriendFunction(void* /*unused*/) {
  FSRef items;
  if (const OSErr result = FSPathMakeRef(path_string, &items, nullptr); result != noErr) {
    std::cerr << "Cairnset: system error " << result << " occurred while resolving this path: [";
    writeGivenText(std::cerr, path_string);
    std::cerr << "]\n";
    addResultNote(result);
    return kPathNotResolved;
  }
  if (const OSStatus result = _pm->setOlvanItemsFSRef(items); result != noErr) {
    std::cerr << "Cairnset: system error " << result
              << " occurred while resolving Presets path using: [";
    writeGivenText(std::cerr, path_string);
    std::cerr << "]\n";
    addResultNote(static_cast<OSErr>(result));
    return kLibraryNotSetUp;
  }
  _pm->openAllPresets();
  return kSuccess;
}

}  // namespace cairnset
