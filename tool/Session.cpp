#include "tool/Session.h"

#include <chrono>
#include <iostream>

#include "host/files/FileManager.h"
#include "host/files/HeldFolder.h"
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

namespace {

using namespace std::chrono_literals;

constexpr auto kSilentWaiting = 500ms;  // another run's load mostly takes less
constexpr auto kMostWaiting = 10s;

HeldFolder* library = nullptr;  // the session's, and owned

// False if another run kept it for too long.
bool lockLibrary() {
  if (library->lock(kSilentWaiting)) return true;
  std::cerr << "Cairnset: another run is changing the library; waiting for it\n";
  if (library->lock(kMostWaiting - kSilentWaiting)) return true;
  std::cerr << "Cairnset: another run is still changing the library; nothing was done\n";
  return false;
}

// Makes the folder the session's library, unless it has one, and locks it.
int takeLibrary(const FSRef& folder) {
  if (library != nullptr) return kSuccess;
  library = new HeldFolder(folder);
  return lockLibrary() ? kSuccess : kLibraryIsBusy;
}

int load() {
  _pm = new PresetManager(nullptr);
  if (path_string[0] != '\0') {
    if (const int status = PresetManagerFriendFunction(nullptr); status != kSuccess) return status;
  } else {
    if (_prefs == nullptr) _prefs = new BrumePrefs;
    _prefs->initPrefs(nullptr);
    if (!_prefs->isInitialised()) {
      std::cerr << "Preferences were not inited!\n";
      return kNoPreferences;
    }
    if (const int status = takeLibrary(*_prefs->getItemsFSRef()); status != kSuccess) return status;
    _pm->openAllPresets(_prefs);
  }
  _v = &_pm->velocityMaps();
  _e = &_pm->effects();
  _p = &_pm->programs();
  _s = &_pm->sessions();
  return kSuccess;
}

void dropPresets() {
  delete _pm;
  _pm = nullptr;
  _v = _p = _s = _e = nullptr;
}

}  // namespace

int instantiate(Changes changes) {
  deinstantiate();
  const int status = load();
  if (status == kSuccess && changes == Changes::kNo) library->unlock();
  return status;
}

int reload() {
  if (library == nullptr) return instantiate();
  dropPresets();
  return load();
}

void deinstantiate() {
  delete _prefs;
  _prefs = nullptr;
  dropPresets();
  delete library;
  library = nullptr;
}

int PresetManagerFriendFunction(void* /*unused*/) {
  FSRef items;
  if (library != nullptr) {
    items = library->ref();
  } else if (const OSErr result = FSPathMakeRef(path_string, &items, nullptr); result != noErr) {
    std::cerr << "Cairnset: system error " << result << " occurred while resolving this path: [";
    writeGivenText(std::cerr, path_string);
    std::cerr << "]\n";
    addResultNote(result);
    return kPathNotResolved;
  }
  if (const int status = takeLibrary(items); status != kSuccess) return status;
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
