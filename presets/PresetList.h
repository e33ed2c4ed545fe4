// All presets of one kind: an ordered list of them, and the tree of their folders.
#pragma once

#include <type_traits>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"
#include "presets/Preset.h"
#include "presets/PresetIndexes.h"
#include "presets/PresetLimb.h"
#include "storage/PtrManager.h"

#pragma GCC visibility push(default)
namespace cairnset {

class PresetLoading;
class PresetManager;
struct FileStart;
struct Finding;

/// The list is also the root limb of its tree. It owns its presets and destroys them unsaved.
/// Positions count from 0 in list order. Statuses are host result codes, 0 for success. A list
/// opens, makes and duplicates presets only once confirmed: it has a manager and two existing
/// folders.
///
/// Look-ups return what a walk from position 0 would find first; those by name, file and folder use
/// indexes (presets/PresetIndexes.h).
class PresetList : public PtrManager, public PresetLimb {
 public:
  explicit PresetList(PresetManager* manager) : _manager(manager), _indexes(*this) {}
  /// Folders, manager and current preset are copied; presets are not, and the copy's list and tree
  /// are empty.
  PresetList(const PresetList& other);
  ~PresetList() override;

  // --- Folders ---

  /// Each returns confirm().
  bool setManager(PresetManager* manager) { return _manager = manager, confirm(); }
  bool setRootFolder(const FSRef& folder) { return _root_folder = folder, confirm(); }
  bool setUserFolder(const FSRef& folder) { return _user_folder = folder, confirm(); }
  void getRootFSSpec(FSRef& out) const { out = _root_folder; }
  void getUserFSSpec(FSRef& out) const { out = _user_folder; }
  /// Anything but noErr makes newPreset and duplicatePreset fail with it: for a kind without
  /// "User".
  void makeNothing(OSErr why) { _why_nothing_made = why; }
  OSErr whyNothingMade() const { return _why_nothing_made; }
  /// Anything but noErr makes newPreset leave an existing file as it is: a preset made for it can
  /// never be written, with this result.
  void keepExisting(OSErr why) { _why_existing_kept = why; }
  /// Checks whether the list can work now; confirmed() returns the last result.
  bool confirm();
  bool confirmed() const { return _confirmed; }
  /// The folder `name` in `parent`; with `create`, made if missing. On failure `out` is no place.
  static OSStatus findFolder(const FSRef& parent, const char* name, bool create, FSRef& out);
  /// Adds a finding of this kind to the manager's list, if there is a manager.
  void addFinding(Finding finding) const;
  /// The first file or folder of this kind that the load passed over; null if none, or no manager.
  const Finding* firstPassedOver() const;

  // --- Entries ---

  /// Appends a Preset*, and adds it to the limb of its file's folder, if the tree has one.
  PtrLink* addPtr(void* preset) override;
  /// Removes the preset from list and tree; it is not destroyed.
  void removePtr(void* preset) override;
  /// Empties list and tree; no preset is destroyed.
  void removeAll() override;
  /// Removes and destroys a preset, and orders the list as if that had never been loaded. The file
  /// stays.
  void forget(Preset* preset);
  /// Destroys all presets and empties list and tree.
  void clearPresets();
  PtrEntries<Preset> presets() const { return entriesAs<Preset>(); }
  /// Adds a limb for a folder that has none; `parent`, in this tree, owns it.
  PresetLimb* addFolderLimb(PresetLimb& parent, const FSRef& folder);
  /// A revision counter: it grows with every change of this list, and of any preset's or limb's
  /// name, file, ID or place in a tree. What was derived from these is valid while it is unchanged.
  unsigned long revision() const;

  // --- Look-ups: the first match in list order, or null ---
  //
  // Those by file or folder end at a null entry, on purpose; the others skip it.

  /// By name: case is ignored, diacritics are not (fncmp).
  Preset* findPreset(const char* name) const;
  /// By file name, a Pascal string, compared as equalPString does.
  Preset* findPreset(const unsigned char* name, bool caseSensitive) const;
  Preset* findPresetInSameFolder(const Preset* other, const unsigned char* name,
                                 bool caseSensitive) const;
  Preset* findPresetInUserFolder(const unsigned char* name, bool caseSensitive) const;
  Preset* findPresetUsingFileSpec(const FSRef& file) const;
  /// The preset's position; 0 also if it is not in the list.
  long findPresetIndex(const Preset* preset) const;

  // --- By position: without a preset there, does nothing and returns 0, false or null ---

  Preset* presetAt(long index) const { return static_cast<Preset*>(getPtrCheckRange(index)); }
  const char* getCName(long index) const { return at(index, &Preset::getTreeItemName); }
  void getPresetName(long index, unsigned char* out) const { at(index, &Preset::getName, out); }
  /// Empty without a preset there.
  void getPresetListName(long index, unsigned char* out) const {
    out[0] = 0;
    at(index, &Preset::getListName, out);
  }
  bool isROM(long index) const { return at(index, &Preset::isROM); }
  bool isRAM(long index) const { return presetAt(index) != nullptr && !isROM(index); }
  /// In memory only.
  void setROM(long index) { at(index, &Preset::setROM, true); }
  void setRAM(long index) { at(index, &Preset::setROM, false); }
  bool getEdited(long index) const { return at(index, &Preset::edited); }
  void setEdited(long index, bool edited) { at(index, &Preset::setEdited, edited); }
  bool isDefault(long index) const { return at(index, &Preset::isDefault); }
  OSStatus renamePreset(long index, const unsigned char* name) {
    return at(index, &Preset::rename, name);
  }
  OSStatus reloadPreset(long index) { return at(index, &Preset::readIn); }
  OSStatus savePreset(long index) { return at(index, &Preset::writeOut); }

  Preset* currentPreset() const { return _current_preset; }
  /// Null selects the preset named "Default", if there is one.
  void setCurrentPreset(Preset* preset);
  void debugList() const {}

  // --- Saving: the status of the last preset written ---

  OSStatus saveAllPresets() { return saveEach(&Preset::writeOut, false); }
  OSStatus saveAllRAMPresets() { return saveEach(&Preset::writeOut, true); }
  /// Writes only the presets whose files are gone from the disk.
  OSStatus saveMissingPresets() { return saveEach(&Preset::writeOutIfDeletedFromDisk, false); }

  // --- What each kind does in its own way ---

  /// Makes and writes a preset. `name` is cleaned in place; an existing file of that name is used.
  virtual OSStatus newPreset(unsigned char* name, bool unused, bool inUserFolder) = 0;
  /// The preset of a file, read if it is not in the list yet; null if it could not be made. With
  /// `start`, the bytes that the file begins with, the file is not opened again.
  virtual Preset* openPreset(const FSRef& file, const FileStart* start = nullptr) = 0;
  /// Copies a preset into the user folder. `newName` is cleaned in place.
  virtual OSStatus duplicatePreset(long index, unsigned char* newName) = 0;
  /// Removes the preset, destroys it and deletes its file.
  virtual void deletePreset(long index) = 0;
  virtual long getPresetType() const = 0;

  // --- Loading (presets/PresetLoading.h) ---

  /// Reads all presets of the kind below the root folder, ensures the "Default" preset, and orders
  /// the list. Presets already in the list are not read again.
  void openPresets();
  /// The same in two steps, to load several lists together: add each, then open each.
  void addTo(PresetLoading& loading);
  void openPresets(PresetLoading& loading);
  /// Reads one folder and all below it into `limb`.
  OSStatus openPresetsRecursively(const FSRef& folder, PresetLimb* limb);
  /// ROM presets first, each group by ascending index, equal indexes as an exchange sort leaves
  /// them; RAM presets are then numbered from 0. Writes nothing.
  void reorderPresets();

 protected:
  OSErr whyExistingKept() const { return _why_existing_kept; }
  const FSRef& newPresetFolder(bool inUserFolder) const {
    return inUserFolder ? _user_folder : _root_folder;
  }
  void destroyWithFile(Preset* preset);

 private:
  // The operation's result, or zero without a preset there.
  template <typename Operation, typename... Args>
  std::invoke_result_t<Operation, Preset&, Args...> at(long index, Operation operation,
                                                       Args... args) const {
    Preset* preset = presetAt(index);
    if (preset == nullptr) return std::invoke_result_t<Operation, Preset&, Args...>();
    return (preset->*operation)(args...);
  }
  OSStatus saveEach(OSErr (Preset::*save)(), bool ramOnly);

  template <typename Accepts>
  Preset* findByFileName(const unsigned char* name, bool caseSensitive, bool stopsAtNull,
                         Accepts accepts) const;

  PresetManager* _manager;
  FSRef _root_folder;
  FSRef _user_folder;
  bool _confirmed = false;
  OSErr _why_nothing_made = noErr;
  OSErr _why_existing_kept = noErr;
  Preset* _current_preset = nullptr;

  mutable PresetIndexes _indexes;
};

/// Calls `each(Preset&)` for every preset in the tree; ignores a null list. Restarts the leaf walk.
template <typename Each>
void forEachPreset(PresetList* list, Each each) {
  if (list == nullptr) return;
  list->setLeafCursor(0);
  while (TreeLeaf* leaf = list->recursiveLeafIterNext())
    each(static_cast<Preset&>(*leaf));
}

}  // namespace cairnset
#pragma GCC visibility pop
