#include "presets/PresetManager.h"

#include <string>

#include "host/files/FileManager.h"
#include "host/files/FileReading.h"
#include "host/files/FileSystemHelpers.h"
#include "host/preferences/BrumePrefs.h"
#include "presets/PresetLoading.h"
#include "presets/PresetReferences.h"

namespace cairnset {

namespace {

constexpr const char* kPresetsFolder = "Presets";

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
  FSRef presets;
  const OSStatus found = PresetList::findFolder(items, kPresetsFolder, false, presets);
  if (found == dirNFErr || found == fnfErr) {
    const OSStatus made = PresetList::findFolder(items, kPresetsFolder, true, presets);
    if (made != noErr) return made;
  }
  _presets_folder = presets;
  return noErr;
}

void PresetManager::openAllPresets(BrumePrefs* prefs) {
  const FSRef* items = prefs != nullptr ? prefs->getItemsFSRef() : nullptr;
  if (items == nullptr || FSRefIsValid(*items) != noErr) return;
  PresetList::findFolder(*items, kPresetsFolder, true, _presets_folder);
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
  PresetList::findFolder(_presets_folder, folderOf(list), true, root);
  list.setRootFolder(root);
  if (list.getPresetType() == kSessionKind) {
    user = root;
  } else {
    PresetList::findFolder(root, "User", true, user);
  }
  list.setUserFolder(user);
}

void PresetManager::openAllPresetsOfType(long kind) {
  const std::vector<PresetList*> lists = listsOf(kind);
  PresetLoading loading;
  for (PresetList* list : lists) {
    findFolders(*list);
    list->addTo(loading);
  }
  for (PresetList* list : lists)
    list->openPresets(loading);
}

OSStatus PresetManager::openTopLevelPresets(long kind) {
  const std::vector<PresetList*> lists = listsOf(kind);
  FSIterator iterator = 0;
  FSOpenIterator(&_presets_folder, 0, &iterator);
  FSRef file;
  std::size_t actual = 0;
  while (FSGetCatalogInfoBulk(iterator, 1, &actual, kFSCatInfoNone, nullptr, &file), actual > 0) {
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
