#include "host/preferences/BrumePrefs.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "host/files/FileManager.h"
#include "host/files/FileSystemHelpers.h"
#include "host/preferences/TimeoutFile.h"
#include "host/terminal/Alerts.h"
#include "host/text/NameConversions.h"

namespace cairnset {

namespace {

constexpr const char* kPrefsFolderName = "Olvan Preferences";
constexpr const char* kItemsName = "Olvan Items";
constexpr const char* kTimeoutName = "Timeout";
constexpr std::string_view kKeymapsName = "BrumeKeymaps.txt";

// This host tells a missing item from a missing folder; some calls of the instrument's return
// dirNFErr for both.
bool isMissing(OSErr result) {
  return result == fnfErr || result == dirNFErr;
}

HFSUniStr255 hostName(const char* name) {
  HFSUniStr255 unicode;
  ConvertCStringToHFSUniStr(name, &unicode);
  return unicode;
}

struct Item {
  OSErr result = noErr;
  FSRef ref{};  // only after noErr
};

Item findItem(const FSRef& folder, const char* name) {
  const HFSUniStr255 unicode = hostName(name);
  Item item;
  item.result =
      FSMakeFSRefUnicode(&folder, unicode.length, unicode.unicode, kTextEncodingUnknown, &item.ref);
  return item;
}

Item createFile(const FSRef& folder, const char* name) {
  const HFSUniStr255 unicode = hostName(name);
  Item file;
  file.result = FSCreateFileUnicode(&folder, unicode.length, unicode.unicode, &file.ref, nullptr);
  return file;
}

// The open data fork, or 0.
std::int16_t openDataFork(const FSRef& file, std::int8_t permissions) {
  HFSUniStr255 name;
  FSGetDataForkName(&name);
  std::int16_t fork = 0;
  const OSErr result = FSOpenFork(&file, name.length, name.unicode, permissions, &fork);
  return result == noErr ? fork : std::int16_t{0};
}

Item userPreferencesFolder() {
  Item folder;
  folder.result = getPrefsFSRef(&folder.ref);
  if (!isMissing(folder.result)) return folder;
  // In a new account the folder is missing until a program makes it, perhaps this one.
  short volume = 0;
  long directory = 0;
  folder.result = getPrefsVolRefNumAndDirID(&volume, &directory);
  if (folder.result == noErr) folder.result = getPrefsFSRef(&folder.ref);
  return folder;
}

}  // namespace

// --- Finding the library -------------------------------------------------------------------------

OSErr BrumePrefs::openPrefsFolder() {
  const Item parent = userPreferencesFolder();
  if (parent.result != noErr) return parent.result;
  const Item folder = findItem(parent.ref, kPrefsFolderName);
  _prefs_ref = folder.ref;
  OSErr result = folder.result;
  bool mustMake = isMissing(result);
  if (result == noErr) {
    bool isAlias = false;
    bool isFolder = false;
    result = FSIsAliasFile(&_prefs_ref, &isAlias, &isFolder);
    mustMake = result == noErr && !isFolder;
    if (mustMake) result = FSDeleteObject(&_prefs_ref);
    if (result != noErr) return result;
  }
  if (mustMake) {
    const HFSUniStr255 name = hostName(kPrefsFolderName);
    result = FSCreateDirectoryUnicode(&parent.ref, name.length, name.unicode, &_prefs_ref, nullptr,
                                      nullptr);
  }
  return result == noErr ? FSRefMakePath(&_prefs_ref, _prefs_path, sizeof _prefs_path) : result;
}

void BrumePrefs::initPrefs(void* /*unused*/) {
  if (isInitialised()) return;
  OSErr result = openPrefsFolder();
  if (result != noErr) {
    displayFileManagerErrorWhileOpening(result, kPrefsFolderName);
    return;
  }
  const Item items = findItem(_prefs_ref, kItemsName);
  _items_ref = items.ref;
  result = items.result;
  if (isMissing(result)) {
    displayErrorStrings("Olvan is unable to locate its library.",
                        "Please locate your installed 'Olvan Items' folder...");
    if (!askForAudioLibraryLocation()) return;
    result = noErr;
  }
  if (result == noErr) result = FSResolveAliasFile(&_items_ref, true, nullptr, nullptr);
  if (result == nsvErr || result == fnfErr) {
    displayErrorStrings("Your Olvan library has been moved.",
                        "Please locate your 'Olvan Items' folder...");
    if (!askForAudioLibraryLocation()) return;
    result = FSResolveAliasFile(&_items_ref, true, nullptr, nullptr);
  }
  if (result == noErr) result = FSRefMakePath(&_items_ref, _items_path, sizeof _items_path);
  if (result != noErr) {
    displayFileManagerErrorWhileOpening(result, kItemsName);
    return;
  }
  _initialised = 1;
  readLastRunTime();
}

OSErr BrumePrefs::makeItemsAlias(const FSRef& target) {
  const HFSUniStr255 name = hostName(kItemsName);
  OSErr result = FSCreateAliasFile(&_prefs_ref, name.length, name.unicode, &target, &_items_ref);
  if (result != dupFNErr) return result;
  const Item existing = findItem(_prefs_ref, kItemsName);
  if (existing.result != noErr) return existing.result;
  if (existing.ref == target) {  // a real folder, which must not make way for an alias to itself
    _items_ref = existing.ref;
    return noErr;
  }
  result = FSDeleteObject(&existing.ref);
  if (result != noErr) return result;
  return FSCreateAliasFile(&_prefs_ref, name.length, name.unicode, &target, &_items_ref);
}

bool BrumePrefs::askForAudioLibraryLocation(void* /*unused*/) {
  FSRef library;
  if (!chooseFolder("Please locate the Olvan Items folder.", &library)) {
    displayErrorStrings("Cancelled.",
                        "Olvan will not be able to properly function without its library.");
    return false;
  }
  const OSErr result = makeItemsAlias(library);
  if (result != noErr) displayFileManagerErrorWhile(result, "creating", kItemsName);
  return result == noErr;
}

OSErr BrumePrefs::userSelectNewItemsPath() {
  if (!askForAudioLibraryLocation()) return noErr;
  return FSRefMakePath(&_items_ref, _items_path, sizeof _items_path);
}

void BrumePrefs::askForBrumeKeymapsTxtLocation() {
  FSRef file;
  if (!chooseFile("Please locate the BrumeKeymaps.txt file.", navFilterUPP, &file)) return;
  if (const std::int16_t fork = openDataFork(file, fsRdPerm); fork != 0) (void)FSCloseFork(fork);
  _initialised = 1;
}

void BrumePrefs::writePrefs() {
  displayErrorStrings("Not implemented.", "2");
}

void BrumePrefs::readPrefs() {
  displayErrorStrings("Not implemented.", "3");
}

// --- The last run --------------------------------------------------------------------------------

void BrumePrefs::readLastRunTime() {
  if (!isInitialised()) return;
  const Item file = findItem(_prefs_ref, kTimeoutName);
  if (file.result == fnfErr) {
    createFile(_prefs_ref, kTimeoutName);
    _last_run_time = 0;
  }
  const std::int16_t fork =
      file.result == noErr ? openDataFork(file.ref, fsRdWrPerm) : std::int16_t{0};
  if (fork == 0) return;
  TimeoutBytes bytes = {};
  const OSErr result = FSReadFork(fork, fsFromStart, 0, bytes.size(), bytes.data(), nullptr);
  (void)FSCloseFork(fork);
  if (result == noErr) _last_run_time = decodeTimeout(bytes);
  if (result == eofErr) _last_run_time = 0;  // as it was made; the instrument has not run since
}

void BrumePrefs::resetLastRunTime() {
  if (!isInitialised()) return;
  _last_run_time = std::time(nullptr);
  Item file = findItem(_prefs_ref, kTimeoutName);
  if (file.result == fnfErr) file = createFile(_prefs_ref, kTimeoutName);
  const std::int16_t fork =
      file.result == noErr ? openDataFork(file.ref, fsRdWrPerm) : std::int16_t{0};
  if (fork == 0) return;
  const TimeoutBytes bytes = encodeTimeout(_last_run_time);
  (void)FSWriteFork(fork, fsFromStart, 0, bytes.size(), bytes.data(), nullptr);
  (void)FSCloseFork(fork);
}

unsigned long BrumePrefs::getSecondsSinceLastRun() const {
  const double seconds = std::difftime(std::time(nullptr), _last_run_time);
  const double bounded = std::clamp(seconds, -2147483648.0, 4294967295.0);
  return static_cast<std::uint32_t>(static_cast<std::int64_t>(bounded));
}

// --- The choosers' callbacks ---------------------------------------------------------------------

bool BrumePrefs::navFilterProc(AEDesc* item, void* info, void* /*callBackUD*/, short filterMode) {
  if (filterMode != kNavFilteringBrowserList || item->descriptorType != typeFSS) return true;
  const auto* kind = static_cast<const NavFileOrFolderInfo*>(info);
  if (kind != nullptr && kind->isFolder && kind->visible) return true;
  const unsigned char* name = item->fsSpec.name;
  return name[0] == kKeymapsName.size() &&
         std::memcmp(name + 1, kKeymapsName.data(), kKeymapsName.size()) == 0;
}

void BrumePrefs::navEventProc(long /*event*/, NavCBRec* /*parameters*/, void* /*callBackUD*/) {}

}  // namespace cairnset
