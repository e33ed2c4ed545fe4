#include "presets/PresetList.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "host/files/FileManager.h"
#include "host/files/FileSystemHelpers.h"
#include "host/text/NameConversions.h"
#include "host/text/PascalStrings.h"
#include "presets/ExchangeOrder.h"
#include "presets/PresetLoading.h"
#include "presets/PresetManager.h"

namespace cairnset {

PresetList::PresetList(const PresetList& other)
    : PtrManager(),
      PresetLimb(),
      _manager(other._manager),
      _root_folder(other._root_folder),
      _user_folder(other._user_folder),
      _confirmed(other._confirmed),
      _why_nothing_made(other._why_nothing_made),
      _current_preset(other._current_preset),
      _indexes(*this) {}

PresetList::~PresetList() {
  for (const Preset* preset : presets())
    delete preset;
}

// --- Folders -------------------------------------------------------------------------------------

bool PresetList::confirm() {
  _confirmed = FSRefIsValid(_root_folder) == noErr && FSRefIsValid(_user_folder) == noErr &&
               _manager != nullptr;
  return _confirmed;
}

OSStatus PresetList::findFolder(const FSRef& parent, const char* name, bool create, FSRef& out) {
  HFSUniStr255 unicode;
  ConvertCStringToHFSUniStr(name, &unicode);
  const FSRef folder = parent;  // `out` may be the same object
  out = {};
  const OSErr result =
      FSMakeFSRefUnicode(&folder, unicode.length, unicode.unicode, kTextEncodingUnknown, &out);
  if ((result != dirNFErr && result != fnfErr) || !create) return result;
  return FSCreateDirectoryUnicode(&folder, unicode.length, unicode.unicode, &out, nullptr, nullptr);
}

void PresetList::addFinding(Finding finding) const {
  if (_manager == nullptr) return;
  finding.kind = static_cast<std::uint32_t>(getPresetType());
  _manager->findings().add(std::move(finding));
}

const Finding* PresetList::firstPassedOver() const {
  if (_manager == nullptr) return nullptr;
  return _manager->findings().firstPassedOver(static_cast<std::uint32_t>(getPresetType()));
}

// --- Entries -------------------------------------------------------------------------------------

unsigned long PresetList::revision() const {
  return changes() + TreeItem::itemChanges() + TreeLimb::treeChanges();
}

PresetLimb* PresetList::addFolderLimb(PresetLimb& parent, const FSRef& folder) {
  _indexes.bringUpToDate();
  auto* limb = new PresetLimb;
  parent.addLimb(limb);
  limb->setSpec(folder);
  _indexes.add(limb);
  return limb;
}

PtrLink* PresetList::addPtr(void* entry) {
  auto* preset = static_cast<Preset*>(entry);
  if (preset == nullptr) return PtrManager::addPtr(nullptr);
  TreeLimb* const limb = _indexes.limbWithID(preset->getParentFolderID());
  PtrLink* link = PtrManager::addPtr(preset);
  if (limb != nullptr) limb->addLeaf(preset);
  _indexes.add(preset);
  return link;
}

void PresetList::removePtr(void* entry) {
  auto* preset = static_cast<Preset*>(entry);
  PtrManager::removePtr(preset);
  TreeLimb::removeItemFromParent(preset);
}

void PresetList::removeAll() {
  PtrManager::removeAll();
  deleteItemsRecursively();
}

void PresetList::forget(Preset* preset) {
  removePtr(preset);
  delete preset;
  // The order of equal indexes depends on that of loading, which is that of the tree indexes.
  std::vector<void*> loaded;
  for (Preset* other : presets())
    loaded.push_back(other);
  const auto loadedAt = [](const void* entry) {
    return entry != nullptr ? static_cast<const Preset*>(entry)->getTreeItemIndex() : 0;
  };
  std::stable_sort(loaded.begin(), loaded.end(),
                   [&](const void* a, const void* b) { return loadedAt(a) < loadedAt(b); });
  setEntries(loaded);
  for (Preset* other : presets()) {
    if (other != nullptr && !other->isROM()) other->setIndex(other->fileIndex());
  }
  reorderPresets();
}

void PresetList::clearPresets() {
  for (const Preset* preset : presets())
    delete preset;
  removeAll();
}

void PresetList::destroyWithFile(Preset* preset) {
  removePtr(preset);
  preset->deleteOnDestroy();
  delete preset;
}

// --- Look-ups ------------------------------------------------------------------------------------

Preset* PresetList::findPreset(const char* name) const {
  return name != nullptr ? _indexes.presetNamed(name) : nullptr;
}

template <typename Accepts>
Preset* PresetList::findByFileName(const unsigned char* name, bool caseSensitive, bool stopsAtNull,
                                   Accepts accepts) const {
  for (Preset* preset : presets()) {
    if (preset == nullptr && stopsAtNull) break;
    if (preset == nullptr) continue;
    char text[256];
    Str255 held;
    getPlaceName(preset->fileRef(), text, sizeof text);
    C2PCopy(held, text);
    if (!equalPString(held, name, caseSensitive)) continue;
    // The file may be gone and so have no name. Check the disk only for a match.
    preset->getName(held);
    if (equalPString(held, name, caseSensitive) && accepts(*preset)) return preset;
  }
  return nullptr;
}

Preset* PresetList::findPreset(const unsigned char* name, bool caseSensitive) const {
  return findByFileName(name, caseSensitive, false, [](const Preset&) { return true; });
}

Preset* PresetList::findPresetInSameFolder(const Preset* other, const unsigned char* name,
                                           bool caseSensitive) const {
  if (other == nullptr) return nullptr;
  return findByFileName(name, caseSensitive, true, [other](const Preset& preset) {
    return cairnset::isSameFolder(&preset.fileRef(), &other->fileRef());
  });
}

Preset* PresetList::findPresetInUserFolder(const unsigned char* name, bool caseSensitive) const {
  return findByFileName(name, caseSensitive, true, [this](const Preset& preset) {
    return cairnset::isSameFolder(&preset.fileRef(), &_user_folder);
  });
}

Preset* PresetList::findPresetUsingFileSpec(const FSRef& file) const {
  return _indexes.presetOf(file);
}

long PresetList::findPresetIndex(const Preset* preset) const {
  long index = 0;
  for (const Preset* entry : presets()) {
    if (entry == preset) return index;
    ++index;
  }
  return 0;
}

void PresetList::setCurrentPreset(Preset* preset) {
  _current_preset = preset != nullptr ? preset : findPreset(Preset::_default_preset_name);
}

OSStatus PresetList::saveEach(OSErr (Preset::*save)(), bool ramOnly) {
  OSStatus result = noErr;
  for (Preset* preset : presets()) {
    if (preset != nullptr && !(ramOnly && preset->isROM())) result = (preset->*save)();
  }
  return result;
}

// --- Loading -------------------------------------------------------------------------------------

void PresetList::openPresets() {
  PresetLoading loading;
  addTo(loading);
  openPresets(loading);
}

void PresetList::addTo(PresetLoading& loading) {
  if (_confirmed) loading.add(*this, _root_folder, *this);
}

void PresetList::openPresets(PresetLoading& loading) {
  if (!_confirmed) return;
  setSpec(_root_folder);
  // A folder that could not be listed may contain a "Default", which making one would overwrite.
  if (loading.build().listed == noErr && makeSureOfDefault(*this)) loading.discardAhead();
  reorderPresets();
}

OSStatus PresetList::openPresetsRecursively(const FSRef& folder, PresetLimb* limb) {
  PresetLoading loading;
  loading.add(*this, folder, *limb);
  return loading.build().status;
}

void PresetList::reorderPresets() {
  if (count() < 2) return;
  constexpr std::int64_t kBehindAll = std::int64_t{1} << 34;
  constexpr std::int64_t kFirstRAM = orderKey(false, std::numeric_limits<std::int32_t>::min());
  std::vector<void*> before;
  std::vector<std::int64_t> keys;
  for (Preset* preset : presets()) {
    before.push_back(preset);
    keys.push_back(preset == nullptr ? kBehindAll : orderKey(preset->isROM(), preset->index()));
  }
  std::vector<void*> after;
  std::vector<std::int32_t> places(before.size());  // of RAM presets among themselves
  std::int32_t next = 0;
  for (const std::size_t i : exchangeOrder(keys)) {
    after.push_back(before[i]);
    if (keys[i] >= kFirstRAM) places[i] = next++;
  }
  if (after != before) setEntries(after);
  // In the old order, which is mostly that of their addresses: faster than in the new one.
  for (std::size_t i = 0; i < before.size(); ++i) {
    auto* preset = static_cast<Preset*>(before[i]);
    if (preset != nullptr && !preset->isROM()) preset->setIndex(places[i]);
  }
}

}  // namespace cairnset
