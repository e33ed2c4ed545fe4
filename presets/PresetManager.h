// The whole preset library.
//
// On disk, below the items folder, each made where it is missing:
//
//   Presets/
//     Velocity Maps/  with User/
//     Effects/        with User/
//     Programs/       with User/
//     Sessions/       which is its own user folder
//
// Further folders below these become part of the tree as they are found. Each kind has a ROM preset
// "Default" in its root folder, made where there is none.
#pragma once

#include <cstdint>
#include <vector>

#include "host/HostTypes.h"
#include "presets/PresetListOfKind.h"

namespace cairnset {

class BrumePrefs;
class BrumeSynth;

/// The manager is the four lists, and owns all presets through them. Statuses are host result
/// codes. Nothing is saved when it is destroyed.
class PresetManager : public VelocityMapPresetList,
                      public EffectsPresetList,
                      public ProgramPresetList,
                      public SessionPresetList {
 public:
  /// Four empty, unconfirmed lists. The engine is not owned, and this system has none: null.
  explicit PresetManager(BrumeSynth* synth);
  /// Each list is copied, without presets, and belongs to the copy; the "Presets" folder is not
  /// known to it.
  PresetManager(const PresetManager& other);
  ~PresetManager() override;

  VelocityMapPresetList& velocityMaps() { return *this; }
  EffectsPresetList& effects() { return *this; }
  ProgramPresetList& programs() { return *this; }
  SessionPresetList& sessions() { return *this; }

  KeymapManager* getKeymapManager() const { return nullptr; }
  const FSRef& presetsFolder() const { return _presets_folder; }

  /// Takes the library's folder, finding or making "Presets" in it. An error of the look-up that is
  /// not a missing folder is let pass, and shows when nothing can be opened; that is meant.
  [[nodiscard]] OSStatus setOlvanItemsFSRef(const FSRef& items);
  /// Opens the library that the preferences know; nothing where they are null or know none.
  void openAllPresets(BrumePrefs* prefs);
  void openAllPresets() { openAllPresetsOfType(kAllKinds); }
  /// Finds or makes the kind's folders and loads it; all kinds, each after those that it refers to,
  /// for kAllKinds. Loading again adds the files that are new.
  void openAllPresetsOfType(long kind);
  /// Opens the presets of a kind, or of all, that lie in "Presets" itself.
  OSStatus openTopLevelPresets(long kind);

  /// Load what is new on disk, and write what is gone from it.
  OSStatus synchronizeVelocityMapList() { return synchronize(velocityMaps()); }
  OSStatus synchronizeEffectsList() { return synchronize(effects()); }
  OSStatus synchronizeProgramList() { return synchronize(programs()); }
  OSStatus synchronizeSessionList() { return synchronize(sessions()); }
  /// The same by kind code; kAllKinds for all four in this order, nothing for any other code.
  void synchronizePresetList(long kind);

  /// Writes every preset; answers the result for the sessions.
  OSStatus saveAllPresets();
  /// Sorts all kinds but sessions; answers the result for the programs.
  OSStatus sortAllForBrowser();
  /// Looks every reference up, for a debugger to watch.
  void debugCheckDependencies();

  /// How many managers there are.
  static std::int32_t _count;

 private:
  // Those of a kind, or of all for kAllKinds, in the order in which they are loaded.
  std::vector<PresetList*> listsOf(long kind);
  void findFolders(PresetList& list);
  OSStatus synchronize(PresetList& list);

  FSRef _presets_folder;
  [[maybe_unused]] BrumeSynth* _synth;
};

}  // namespace cairnset
