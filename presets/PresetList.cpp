#include "presets/PresetList.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "host/FileManager.h"
#include "host/FileSystemHelpers.h"
#include "host/NameConversions.h"
#include "host/PascalStrings.h"
#include "presets/ExchangeOrder.h"
#include "presets/LimbWalk.h"
#include "presets/Preset.h"

namespace cairnset {

PresetList::PresetList(const PresetList& other)
    : PtrManager(),
      PresetLimb(),
      _manager(other._manager),
      _root_folder(other._root_folder),
      _user_folder(other._user_folder),
      _confirmed(other._confirmed),
      _current_preset(other._current_preset) {}

PresetList::~PresetList() {
  for (const Preset* preset : presets())
    delete preset;
}

// --- Folders -------------------------------------------------------------------------------------

bool PresetList::setManager(PresetManager* manager) {
  _manager = manager;
  return confirm();
}

bool PresetList::setRootFolder(const FSRef& folder) {
  _root_folder = folder;
  return confirm();
}

bool PresetList::setUserFolder(const FSRef& folder) {
  _user_folder = folder;
  return confirm();
}

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

// --- Entries -------------------------------------------------------------------------------------

PresetList::Stamp PresetList::nameStamp() const {
  return {changes(), TreeItem::nameChanges()};
}
PresetList::Stamp PresetList::fileStamp() const {
  return {changes(), Preset::fileChanges()};
}
PresetList::Stamp PresetList::limbStamp() {
  return {TreeLimb::limbChanges(), TreeItem::idChanges()};
}

TreeLimb* PresetList::limbOfFolder(unsigned long id) {
  if (_limb_by_folder_stamp != limbStamp()) {
    _limb_by_folder.clear();
    LimbWalk walk(*this);
    while (TreeLimb* limb = walk.next())
      _limb_by_folder.try_emplace(limb->getTreeItemID(), limb);
    _limb_by_folder_stamp = limbStamp();
  }
  const auto found = _limb_by_folder.find(id);
  return found != _limb_by_folder.end() ? found->second : nullptr;
}

PresetLimb* PresetList::addFolderLimb(PresetLimb* parent, const FSRef& folder) {
  const bool isRight = _limb_by_folder_stamp == limbStamp();
  auto* limb = new PresetLimb;
  parent->addLimb(limb);
  limb->setSpec(folder);
  // With an ID that no limb had before, where it stands in the tree does not matter.
  if (isRight && _limb_by_folder.try_emplace(limb->getTreeItemID(), limb).second) {
    _limb_by_folder_stamp = limbStamp();
  }
  return limb;
}

PtrLink* PresetList::addPtr(void* entry) {
  auto* preset = static_cast<Preset*>(entry);
  const bool namesAreRight = _by_name_stamp == nameStamp();
  const bool filesAreRight = _by_file_stamp == fileStamp() && _by_file_is_whole;
  PtrLink* link = PtrManager::addPtr(preset);
  if (preset == nullptr) return link;
  // A preset at the end of the list is found only where nothing before it is.
  if (namesAreRight) {
    _by_name.add(preset);
    _by_name_stamp = nameStamp();
  }
  if (filesAreRight) {
    _by_file.add(preset->fileRef(), preset);
    _by_file_stamp = fileStamp();
  }
  if (TreeLimb* limb = limbOfFolder(preset->getParentFolderID()); limb != nullptr) {
    limb->addLeaf(preset);
  }
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
  if (name == nullptr) return nullptr;
  if (_by_name_stamp != nameStamp()) {
    _by_name.clear();
    _by_name.reserve(static_cast<std::size_t>(count()));
    for (Preset* preset : presets()) {
      if (preset != nullptr) _by_name.add(preset);
    }
    _by_name_stamp = nameStamp();
  }
  return _by_name.find(name);
}

template <typename Lies>
Preset* PresetList::findByFileName(const unsigned char* name, bool caseSensitive, bool stopsAtNull,
                                   Lies lies) const {
  for (Preset* preset : presets()) {
    if (preset == nullptr && stopsAtNull) break;
    if (preset == nullptr) continue;
    char text[256];
    Str255 held;
    getPlaceName(preset->fileRef(), text, sizeof text);
    C2PCopy(held, text);
    if (!equalPString(held, name, caseSensitive)) continue;
    // A file that is gone has no name. Only a match is worth asking the disk for it.
    preset->getName(held);
    if (equalPString(held, name, caseSensitive) && lies(*preset)) return preset;
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
  if (_by_file_stamp != fileStamp()) {
    _by_file.clear();
    _by_file_is_whole = true;
    for (Preset* preset : presets()) {
      _by_file_is_whole = preset != nullptr;
      if (preset == nullptr) break;
      _by_file.add(preset->fileRef(), preset);
    }
    _by_file_stamp = fileStamp();
  }
  return file.node != 0 ? _by_file.find(file) : nullptr;
}

long PresetList::findPresetIndex(const Preset* preset) const {
  long index = 0;
  for (const Preset* entry : presets()) {
    if (entry == preset) return index;
    ++index;
  }
  return 0;
}

// --- By position ---------------------------------------------------------------------------------

Preset* PresetList::presetAt(long index) const {
  return static_cast<Preset*>(getPtrCheckRange(index));
}

const char* PresetList::getCName(long index) const {
  const Preset* preset = presetAt(index);
  return preset != nullptr ? preset->getTreeItemName() : nullptr;
}

void PresetList::getPresetName(long index, unsigned char* out) const {
  if (const Preset* preset = presetAt(index); preset != nullptr) preset->getName(out);
}

void PresetList::getPresetListName(long index, unsigned char* out) const {
  if (const Preset* preset = presetAt(index); preset != nullptr) {
    preset->getListName(out);
  } else {
    out[0] = 0;
  }
}

bool PresetList::isROM(long index) const {
  const Preset* preset = presetAt(index);
  return preset != nullptr && preset->isROM();
}

bool PresetList::isRAM(long index) const {
  const Preset* preset = presetAt(index);
  return preset != nullptr && !preset->isROM();
}

void PresetList::setROM(long index) {
  if (Preset* preset = presetAt(index); preset != nullptr) preset->setROM(true);
}

void PresetList::setRAM(long index) {
  if (Preset* preset = presetAt(index); preset != nullptr) preset->setROM(false);
}

bool PresetList::getEdited(long index) const {
  const Preset* preset = presetAt(index);
  return preset != nullptr && preset->edited();
}

void PresetList::setEdited(long index, bool edited) {
  if (Preset* preset = presetAt(index); preset != nullptr) preset->setEdited(edited);
}

bool PresetList::isDefault(long index) const {
  const Preset* preset = presetAt(index);
  return preset != nullptr && preset->isDefault();
}

OSStatus PresetList::renamePreset(long index, const unsigned char* name) {
  Preset* preset = presetAt(index);
  return preset != nullptr ? preset->rename(name) : noErr;
}

OSStatus PresetList::reloadPreset(long index) {
  Preset* preset = presetAt(index);
  return preset != nullptr ? preset->readIn() : noErr;
}

OSStatus PresetList::savePreset(long index) {
  Preset* preset = presetAt(index);
  return preset != nullptr ? preset->writeOut() : noErr;
}

void PresetList::setCurrentPreset(Preset* preset) {
  _current_preset = preset != nullptr ? preset : findPreset(Preset::_default_preset_name);
}

// --- Saving --------------------------------------------------------------------------------------

OSStatus PresetList::saveAllPresets() {
  OSStatus result = noErr;
  for (Preset* preset : presets()) {
    if (preset != nullptr) result = preset->writeOut();
  }
  return result;
}

OSStatus PresetList::saveAllRAMPresets() {
  OSStatus result = noErr;
  for (Preset* preset : presets()) {
    if (preset != nullptr && !preset->isROM()) result = preset->writeOut();
  }
  return result;
}

OSStatus PresetList::saveMissingPresets() {
  OSStatus result = noErr;
  for (Preset* preset : presets()) {
    if (preset != nullptr) result = preset->writeOutIfDeletedFromDisk();
  }
  return result;
}

// --- Loading -------------------------------------------------------------------------------------

void PresetList::openPresets() {
  if (!_confirmed) return;
  setSpec(_root_folder);
  bool listed = false;
  readFolders(_root_folder, this, listed);
  // Of a folder that could not be listed nobody knows whether a "Default" lies in it, and making
  // one would write over it.
  if (listed) makeSureOfDefault();
  reorderPresets();
}

OSStatus PresetList::openPresetsRecursively(const FSRef& folder, PresetLimb* limb) {
  bool listed = false;
  return readFolders(folder, limb, listed);
}

void PresetList::makeSureOfDefault() {
  constexpr std::string_view kDefault = Preset::_default_preset_name;
  // One walk: to index all names for a single question would cost more.
  Preset* found = nullptr;
  for (Preset* preset : presets()) {
    const char* own = preset != nullptr ? preset->getTreeItemName() : nullptr;
    const std::string_view name = own != nullptr ? own : "";
    if (name.size() == kDefault.size() && fncmp(name.data(), kDefault.data()) == 0) {
      found = preset;
      break;
    }
  }
  if (found == nullptr) found = openPassedDefault();
  if (found == nullptr) {
    Str255 name;
    C2PCopy(name, kDefault.data());
    newPreset(name, true, false);
    // Where it could not be made this is another preset, which is made ROM and 0 all the same.
    // Meant so.
    found = presetAt(count() - 1);
    if (found == nullptr) return;
  } else if (found->isROM() && found->index() == 0) {
    return;
  }
  found->setIndex(0);
  found->setROM(true);
  found->writeOut();
}

Preset* PresetList::openPassedDefault() {
  FSRef file;
  OSStatus status = noErr;
  const bool isThere =
      findFolder(_root_folder, Preset::_default_preset_name, false, file) == noErr &&
      isRegularFile(&file);
  return isThere ? openIfOfThisKind(file, status) : nullptr;
}

Preset* PresetList::openIfOfThisKind(const FSRef& file, OSStatus& status) {
  std::int16_t fork = 0;
  if (FSOpenFork(&file, 0, nullptr, fsRdWrPerm, &fork) != noErr) return nullptr;
  Preset* preset = nullptr;
  std::uint32_t kind = 0;
  if (Preset::readKind(fork, kind) == noErr &&
      kind == static_cast<std::uint32_t>(getPresetType())) {
    // While the file is open, what it was known by is also what the preset is read from.
    preset = openPreset(file);
  }
  status = FSCloseFork(fork);
  return preset;
}

OSStatus PresetList::readFolders(const FSRef& folder, PresetLimb* limb, bool& listed) {
  // Folders that are being read, from the outermost to the innermost.
  struct Reading {
    FSIterator iterator;
    PresetLimb* limb;
    std::unordered_map<std::uint32_t, PresetLimb*> limbsBefore;  // by folder, from an earlier load
  };
  std::vector<Reading> reading;
  OSStatus status = noErr;
  const auto enter = [&](const FSRef& ref, PresetLimb* into) {
    FSIterator iterator = 0;
    status = FSOpenIterator(&ref, 0, &iterator);
    if (status != noErr) return;
    reading.push_back({iterator, into, {}});
    for (TreeLimb* child : into->limbs().entriesAs<TreeLimb>()) {
      auto* known = dynamic_cast<PresetLimb*>(child);
      if (known != nullptr) reading.back().limbsBefore.try_emplace(known->folder().node, known);
    }
  };
  enter(folder, limb);
  listed = !reading.empty();
  while (!reading.empty()) {
    FSCatalogInfo info;
    FSRef ref;
    std::size_t actual = 0;
    FSGetCatalogInfoBulk(reading.back().iterator, 1, &actual, kFSCatInfoNodeFlags, &info, &ref);
    if (actual == 0) {
      reading.pop_back();  // the iterator has always been left open, and costs nothing now
    } else if ((info.nodeFlags & kFSNodeIsDirectoryMask) == 0) {
      openIfOfThisKind(ref, status);
    } else {
      const Reading& here = reading.back();
      const auto known = here.limbsBefore.find(ref.node);
      const bool isKnown = known != here.limbsBefore.end();
      PresetLimb* child = isKnown ? known->second : addFolderLimb(here.limb, ref);
      if (isKnown) child->setSpec(ref);
      enter(ref, child);
    }
  }
  return status;
}

void PresetList::reorderPresets() {
  if (count() < 2) return;
  std::vector<void*> before;
  std::vector<std::int64_t> keys;
  for (Preset* preset : presets()) {
    constexpr std::int64_t kBehindAllROM = std::int64_t{1} << 33;
    before.push_back(preset);
    keys.push_back(preset == nullptr ? 2 * kBehindAllROM
                                     : preset->index() + (preset->isROM() ? 0 : kBehindAllROM));
  }
  std::vector<void*> after;
  for (const std::size_t i : exchangeOrder(keys))
    after.push_back(before[i]);
  if (after != before) setEntries(after);
  std::int32_t next = 0;
  for (Preset* preset : presets()) {
    if (preset != nullptr && !preset->isROM()) preset->setIndex(next++);
  }
}

}  // namespace cairnset
