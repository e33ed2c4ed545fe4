#include "presets/PresetManager.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "host/files/FileManager.h"
#include "host/files/FileReading.h"
#include "host/files/FileSystemHelpers.h"
#include "host/files/FolderWalk.h"
#include "host/preferences/BrumePrefs.h"
#include "presets/PresetLoading.h"
#include "presets/PresetReferences.h"

namespace cairnset {

namespace {

constexpr const char* kPresetsFolder = "Presets";
constexpr const char* kUserFolder = "User";

const char* folderOf(const PresetList& list) {
  switch (list.getPresetType()) {
    case kVelocityMapKind:
      return "Velocity Maps";
    case kEffectsKind:
      return "Effects";
    case kProgramKind:
      return "Programs";
    default:
      return "Sessions";
  }
}

bool holdsKindFolder(const FSRef& folder) {
  for (const char* name : {"Velocity Maps", "Effects", "Programs", "Sessions"}) {
    FSRef found;
    if (PresetList::findFolder(folder, name, false, found) == noErr && isFolder(&found))
      return true;
  }
  return false;
}

// The items folder of the library whose "Presets" is this folder or one above it; else no place.
FSRef libraryAround(FSRef folder) {
  FSRef above;
  HFSUniStr255 name;
  for (; placeOf(folder, &above, &name); folder = above) {
    if (std::u16string_view(name.unicode, name.length) == u"Presets" && holdsKindFolder(folder))
      return above;
  }
  return {};
}

// Whether somebody has taken "Presets", or a folder of presets, for the items folder.
bool looksLikeLibraryFolder(const FSRef& folder) {
  constexpr std::size_t kMostRead = 64;
  if (holdsKindFolder(folder)) return true;
  std::size_t read = 0;
  for (const auto& [file, isFolder] : listFolder(folder).items) {
    char buffer[FileStart::kMost];
    if (isFolder || ++read > kMostRead) continue;
    if (Preset::kindOf(readFileStart(file, fsRdPerm, buffer).bytes)) return true;
  }
  return false;
}

}  // namespace

std::int32_t PresetManager::_count = 0;

PresetManager::PresetManager(BrumeSynth* synth)
    : VelocityMapPresetList(this),
      EffectsPresetList(this),
      ProgramPresetList(this),
      SessionPresetList(this),
      _synth(synth) {
  ++_count;
}

PresetManager::PresetManager(const PresetManager& other)
    : VelocityMapPresetList(other),
      EffectsPresetList(other),
      ProgramPresetList(other),
      SessionPresetList(other),
      _synth(other._synth) {
  for (PresetList* list : listsOf(kAllKinds))
    list->setManager(this);
  ++_count;
}

PresetManager::~PresetManager() {
  --_count;
}

OSStatus PresetManager::setOlvanItemsFSRef(const FSRef& items) {
  if (const OSErr result = FSRefIsValid(items); result != noErr) return result;
  const PresetsFolder presets = findPresetsFolder(items);
  if (presets.made != noErr) return presets.made;
  usePresetsFolder(items, presets);
  return noErr;
}

PresetManager::PresetsFolder PresetManager::findPresetsFolder(const FSRef& items) {
  PresetsFolder presets;
  presets.found = PresetList::findFolder(items, kPresetsFolder, false, presets.ref);
  presets.isMissing = presets.found == dirNFErr || presets.found == fnfErr;
  if (presets.isMissing)
    presets.made = PresetList::findFolder(items, kPresetsFolder, true, presets.ref);
  return presets;
}

void PresetManager::usePresetsFolder(const FSRef& items, const PresetsFolder& presets) {
  _items_folder = items;
  _presets_folder = presets.ref;
  _why_no_presets_folder = presets.isMissing ? presets.made : presets.found;
  const bool isNew = presets.isMissing && presets.made == noErr;
  _findings.forgetLoadOf(kAllKinds);
  if (isNew) _findings.add({.sort = FindingSort::kPresetsFolderMade, .place = items});
  if (const FSRef library = libraryAround(items); library != FSRef()) {
    _findings.add({.sort = FindingSort::kInsideLibrary, .place = library});
  } else if (isNew && looksLikeLibraryFolder(items)) {
    _findings.add({.sort = FindingSort::kHoldsPresets, .place = items});
  }
}

void PresetManager::openAllPresets(BrumePrefs* prefs) {
  const FSRef* items = prefs != nullptr ? prefs->getItemsFSRef() : nullptr;
  if (items == nullptr || FSRefIsValid(*items) != noErr) return;
  usePresetsFolder(*items, findPresetsFolder(*items));
  openAllPresetsOfType(kAllKinds);
}

std::vector<PresetList*> PresetManager::listsOf(long kind) {
  std::vector<PresetList*> lists{&velocityMaps(), &effects(), &programs(), &sessions()};
  std::erase_if(lists, [kind](const PresetList* list) {
    return kind != kAllKinds && kind != list->getPresetType();
  });
  return lists;
}

void PresetManager::findFolders(PresetList& list) {
  // A folder that could be neither found nor made is no place and leaves the list unconfirmed, so
  // that it never works on another kind's folder.
  FSRef root, user;
  const auto add = [&list](FindingSort sort, const FSRef& place, OSStatus why, const char* name) {
    list.addFinding(
        {.sort = sort, .place = place, .result = static_cast<OSErr>(why), .name = name});
  };
  OSStatus found = PresetList::findFolder(_presets_folder, folderOf(list), true, root);
  if (found == errFSBadFSRef) found = _why_no_presets_folder;
  if (found != noErr) add(FindingSort::kKindFolderNotMade, _presets_folder, found, folderOf(list));
  list.setRootFolder(root);
  list.makeNothing(noErr);
  if (found != noErr || list.getPresetType() == kSessionKind) {
    user = root;
  } else if (found = PresetList::findFolder(root, kUserFolder, true, user); found != noErr) {
    if (isFolder(&root)) {
      // Its presets are there all the same: read them, but make nothing in a folder like that.
      add(FindingSort::kUserFolderNotMade, root, found, kUserFolder);
      list.makeNothing(static_cast<OSErr>(found));
      user = root;
    } else {
      add(FindingSort::kFolderNotListed, root, dirNFErr, "");
    }
  }
  const auto kind = static_cast<std::uint32_t>(list.getPresetType());
  if (!list.setUserFolder(user) && _findings.passedOver(kind) == 0) {
    // They were found, but cannot be looked at any more.
    const OSErr why = std::min(FSRefIsValid(root), FSRefIsValid(user));
    add(FindingSort::kFolderNotListed, root, why != noErr ? why : ioErr, "");
  }
}

void PresetManager::openAllPresetsOfType(long kind) {
  const std::vector<PresetList*> lists = listsOf(kind);
  PresetLoading loading;
  for (PresetList* list : lists) {
    _findings.forgetLoadOf(static_cast<std::uint32_t>(list->getPresetType()));
    findFolders(*list);
    list->addTo(loading);
  }
  for (PresetList* list : lists)
    list->openPresets(loading);
}

OSStatus PresetManager::openTopLevelPresets(long kind) {
  const std::vector<PresetList*> lists = listsOf(kind);
  FSIterator iterator = 0;
  (void)FSOpenIterator(&_presets_folder, 0, &iterator);
  FSRef file;
  std::size_t actual = 0;
  while ((void)FSGetCatalogInfoBulk(iterator, 1, &actual, kFSCatInfoNone, nullptr, &file),
         actual > 0) {
    char buffer[FileStart::kMost];
    const FileStart start = readFileStart(file, fsRdPerm, buffer);
    const auto fileKind = Preset::kindOf(start.bytes);
    for (PresetList* list : lists) {
      if (fileKind == static_cast<std::uint32_t>(list->getPresetType()))
        list->openPreset(file, &start);
    }
  }
  return FSCloseIterator(iterator);
}

OSStatus PresetManager::synchronize(PresetList& list) {
  openAllPresetsOfType(list.getPresetType());
  return list.saveMissingPresets();
}

void PresetManager::synchronizePresetList(long kind) {
  for (PresetList* list : listsOf(kind))
    synchronize(*list);
}

OSStatus PresetManager::saveAllPresets() {
  OSStatus result = noErr;
  for (PresetList* list : listsOf(kAllKinds))
    result = list->saveAllPresets();
  return result;
}

OSStatus PresetManager::sortAllForBrowser() {
  velocityMaps().sortForBrowser();
  effects().sortForBrowser();
  return programs().sortForBrowser();
}

void PresetManager::debugCheckDependencies() {
  const auto lookUp = [](PresetList& referrers, const PresetReference& reference,
                         const PresetList& referred) {
    referrers.iterReset();
    while (const void* entry = referrers.iterNext()) {
      const std::string name(reference.name(*static_cast<const Preset*>(entry)));
      (void)referred.findPreset(name.c_str());
    }
  };
  lookUp(sessions(), kSessionVelocityMapReference, velocityMaps());
  lookUp(sessions(), kSessionProgramReference, programs());
  lookUp(programs(), kProgramEffectsReference, effects());
}

}  // namespace cairnset
