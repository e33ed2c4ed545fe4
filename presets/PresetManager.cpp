#include "presets/PresetManager.h"

#include <string>

#include "host/files/FileManager.h"
#include "host/files/FileReading.h"
#include "host/files/FileSystemHelpers.h"
#include "host/preferences/BrumePrefs.h"
#include "presets/PresetLoading.h"

namespace cairnset {

namespace {

constexpr const char* kPresetsFolder = "Presets";

// Whether what is asked for one kind, or for all, is asked for this one.
bool isAsked(long kind, long own) {
  return kind == kAllKinds || kind == own;
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
  velocityMaps().setManager(this);
  effects().setManager(this);
  programs().setManager(this);
  sessions().setManager(this);
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

void PresetManager::findFolders(PresetList& list, const char* folder, bool hasUserFolder) {
  // A folder that could be neither found nor made is no place at all, and leaves the list
  // unconfirmed: it must never work on another kind's folder instead.
  FSRef root, user;
  PresetList::findFolder(_presets_folder, folder, true, root);
  list.setRootFolder(root);
  if (hasUserFolder) {
    PresetList::findFolder(root, "User", true, user);
  } else {
    user = root;
  }
  list.setUserFolder(user);
}

void PresetManager::openAllPresetsOfType(long kind) {
  const struct {
    PresetList& list;
    const char* folder;
    bool hasUserFolder;
  } kinds[] = {{velocityMaps(), "Velocity Maps", true},
               {effects(), "Effects", true},
               {programs(), "Programs", true},
               {sessions(), "Sessions", false}};
  PresetLoading loading;
  for (const auto& [list, folder, hasUserFolder] : kinds) {
    if (!isAsked(kind, list.getPresetType())) continue;
    findFolders(list, folder, hasUserFolder);
    list.addTo(loading);
  }
  for (const auto& each : kinds) {
    if (isAsked(kind, each.list.getPresetType())) each.list.openPresets(loading);
  }
}

OSStatus PresetManager::openTopLevelPresets(long kind) {
  PresetList* const lists[] = {&velocityMaps(), &effects(), &programs(), &sessions()};
  FSIterator iterator = 0;
  FSOpenIterator(&_presets_folder, 0, &iterator);
  FSRef file;
  std::size_t actual = 0;
  while (FSGetCatalogInfoBulk(iterator, 1, &actual, kFSCatInfoNone, nullptr, &file), actual > 0) {
    char buffer[FileStart::kMost];
    const FileStart start = readFileStart(file, fsRdPerm, buffer);
    const auto fileKind = Preset::kindOf(start.bytes);
    for (PresetList* list : lists) {
      const long own = list->getPresetType();
      if (isAsked(kind, own) && fileKind == static_cast<std::uint32_t>(own))
        list->openPreset(file, &start);
    }
  }
  return FSCloseIterator(iterator);
}

OSStatus PresetManager::synchronizeVelocityMapList() {
  openAllPresetsOfType(kVelocityMapKind);
  return velocityMaps().saveMissingPresets();
}

OSStatus PresetManager::synchronizeEffectsList() {
  openAllPresetsOfType(kEffectsKind);
  return effects().saveMissingPresets();
}

OSStatus PresetManager::synchronizeProgramList() {
  openAllPresetsOfType(kProgramKind);
  return programs().saveMissingPresets();
}

OSStatus PresetManager::synchronizeSessionList() {
  openAllPresetsOfType(kSessionKind);
  return sessions().saveMissingPresets();
}

void PresetManager::synchronizePresetList(long kind) {
  if (isAsked(kind, kVelocityMapKind)) synchronizeVelocityMapList();
  if (isAsked(kind, kEffectsKind)) synchronizeEffectsList();
  if (isAsked(kind, kProgramKind)) synchronizeProgramList();
  if (isAsked(kind, kSessionKind)) synchronizeSessionList();
}

OSStatus PresetManager::saveAllPresets() {
  velocityMaps().saveAllPresets();
  effects().saveAllPresets();
  programs().saveAllPresets();
  return sessions().saveAllPresets();
}

OSStatus PresetManager::sortAllForBrowser() {
  velocityMaps().sortForBrowser();
  effects().sortForBrowser();
  return programs().sortForBrowser();
}

void PresetManager::debugCheckDependencies() {
  SessionPresetList& sessionList = sessions();
  sessionList.iterReset();
  while (const void* entry = sessionList.iterNext()) {
    const auto& fields =
        static_cast<const SessionPreset*>(static_cast<const Preset*>(entry))->fields;
    (void)velocityMaps().findPreset(std::string(nameInField(fields.velocityMapName)).c_str());
    (void)programs().findPreset(std::string(nameInField(fields.programName)).c_str());
  }
  ProgramPresetList& programList = programs();
  programList.iterReset();
  while (const void* entry = programList.iterNext()) {
    const auto& fields =
        static_cast<const ProgramPreset*>(static_cast<const Preset*>(entry))->fields;
    (void)effects().findPreset(std::string(nameInField(fields.effectsName)).c_str());
  }
}

}  // namespace cairnset
