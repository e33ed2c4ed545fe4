// The whole preset library.
//
// On disk, below the items folder, each folder made if missing:
//
//   Presets/
//     Velocity Maps/  with User/
//     Effects/        with User/
//     Programs/       with User/
//     Sessions/       which is its own user folder
//
// Other folders below these become part of the tree. Each kind has a ROM preset "Default" in its
// root folder, made if missing.
#pragma once

#include <cstdint>
#include <vector>

#include "host/HostTypes.h"
#include "presets/Findings.h"
#include "presets/PresetListOfKind.h"

#pragma GCC visibility push(default)
namespace cairnset {

class BrumePrefs;
class BrumeSynth;

/// The four lists, which own all presets and destroy them unsaved. Statuses are host result codes.
class PresetManager : public VelocityMapPresetList,
                      public EffectsPresetList,
                      public ProgramPresetList,
                      public SessionPresetList {
 public:
  /// Four empty, unconfirmed lists. The engine is not owned, and this system has none: null.
  explicit PresetManager(BrumeSynth* synth);
  /// Copies the lists without presets; the copy is their manager, and has no "Presets" folder.
  PresetManager(const PresetManager& other);
  ~PresetManager() override;

  VelocityMapPresetList& velocityMaps() { return *this; }
  EffectsPresetList& effects() { return *this; }
  ProgramPresetList& programs() { return *this; }
  SessionPresetList& sessions() { return *this; }

  /// The list of a kind, or all four for kAllKinds, in loading order; none for any other code.
  std::vector<PresetList*> listsOf(long kind);
  /// The list of one of the four kinds.
  PresetList& listOf(long kind) { return *listsOf(kind).front(); }

  KeymapManager* getKeymapManager() const { return nullptr; }
  /// The library's own folder, in which "Presets" is; no place until it is set.
  const FSRef& itemsFolder() const { return _items_folder; }
  const FSRef& presetsFolder() const { return _presets_folder; }
  /// What the last load of each kind passed over, and what the commands since then could not do.
  Findings& findings() { return _findings; }
  const Findings& findings() const { return _findings; }

  /// Sets the library's folder, and finds or makes "Presets" in it. A look-up error other than a
  /// missing folder is ignored, on purpose: it shows when nothing can be opened.
  [[nodiscard]] OSStatus setOlvanItemsFSRef(const FSRef& items);
  /// Opens the library that the preferences name; does nothing if they are null or name none.
  void openAllPresets(BrumePrefs* prefs);
  void openAllPresets() { openAllPresetsOfType(kAllKinds); }
  /// Finds or makes the kind's folders and loads it; for kAllKinds all kinds, each after those that
  /// it refers to. Loading again adds new files.
  void openAllPresetsOfType(long kind);
  /// Opens the presets of a kind, or of all, in "Presets" itself.
  OSStatus openTopLevelPresets(long kind);

  /// Load files that are new on disk, and write those that are gone from it.
  OSStatus synchronizeVelocityMapList() { return synchronize(velocityMaps()); }
  OSStatus synchronizeEffectsList() { return synchronize(effects()); }
  OSStatus synchronizeProgramList() { return synchronize(programs()); }
  OSStatus synchronizeSessionList() { return synchronize(sessions()); }
  /// The same by kind code; kAllKinds for all four in this order, nothing for any other code.
  void synchronizePresetList(long kind);

  /// Writes every preset; returns the result for the sessions.
  OSStatus saveAllPresets();
  /// Sorts all kinds but sessions; returns the result for the programs.
  OSStatus sortAllForBrowser();
  /// Looks up every reference, for use under a debugger.
  void debugCheckDependencies();

  /// The number of managers that exist.
  static std::int32_t _count;

 private:
  void findFolders(PresetList& list);

  struct PresetsFolder {
    FSRef ref{};
    OSStatus found = noErr;
    bool isMissing = false;
    OSStatus made = noErr;  // if it was missing
  };
  static PresetsFolder findPresetsFolder(const FSRef& items);
  void usePresetsFolder(const FSRef& items, const PresetsFolder& presets);

  OSStatus synchronize(PresetList& list);

  FSRef _items_folder;
  FSRef _presets_folder;
  OSStatus _why_no_presets_folder = noErr;
  Findings _findings;
  [[maybe_unused]] BrumeSynth* _synth;
};

}  // namespace cairnset
#pragma GCC visibility pop
