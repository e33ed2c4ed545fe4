#include "presets/PresetLoading.h"

#include <string_view>
#include <unordered_map>

#include "host/files/FileManager.h"
#include "host/files/FileSystemHelpers.h"
#include "host/text/PascalStrings.h"
#include "presets/PresetList.h"

namespace cairnset {

namespace {

// A file of the list's kind is a preset, whatever its name.
Preset* openIfOfThisKind(PresetList& list, const FSRef& file, const FileStart& start) {
  if (start.opened != noErr) return nullptr;
  const auto kind = Preset::kindOf(start.bytes);
  return kind == static_cast<std::uint32_t>(list.getPresetType()) ? list.openPreset(file, &start)
                                                                  : nullptr;
}

class Building {
 public:
  Building(PresetList& list, PresetLimb& top) : _list(list) { enter(top); }

  void addFolder(const FolderWalk::Item& folder) {
    // Drop the folders that the walk has left.
    _open.erase(_open.begin() + static_cast<std::ptrdiff_t>(folder.depth) + 1, _open.end());
    const OpenLimb& parent = _open.back();
    const auto known = parent.known.find(folder.ref.node);
    const bool isKnown = known != parent.known.end();
    PresetLimb* limb = isKnown ? known->second : _list.addFolderLimb(*parent.limb, folder.ref);
    if (isKnown) limb->setSpec(folder.ref);
    enter(*limb);
  }

 private:
  struct OpenLimb {
    PresetLimb* limb;
    std::unordered_map<std::uint32_t, PresetLimb*> known;  // limbs of an earlier load, by node
  };

  void enter(PresetLimb& limb) {
    OpenLimb& open = _open.emplace_back(OpenLimb{&limb, {}});
    for (TreeLimb* child : limb.limbs().entriesAs<TreeLimb>()) {
      auto* known = dynamic_cast<PresetLimb*>(child);
      if (known != nullptr) open.known.try_emplace(known->folder().node, known);
    }
  }

  PresetList& _list;
  std::vector<OpenLimb> _open;  // from the top to the folder added last
};

// The preset in the root folder's file "Default", if the load skipped it because it could not be
// opened or read at that moment: making a new one would overwrite it.
Preset* openPassedDefault(PresetList& list) {
  FSRef root, file;
  list.getRootFSSpec(root);
  const bool isThere =
      PresetList::findFolder(root, Preset::_default_preset_name, false, file) == noErr &&
      isRegularFile(&file);
  char buffer[FileStart::kMost];
  return isThere ? openIfOfThisKind(list, file, readFileStart(file, fsRdWrPerm, buffer)) : nullptr;
}

Preset* findDefault(const PresetList& list) {
  constexpr std::string_view kDefault = Preset::_default_preset_name;
  // One walk is cheaper than an index of all names.
  for (Preset* preset : list.presets()) {
    const char* own = preset != nullptr ? preset->getTreeItemName() : nullptr;
    const std::string_view name = own != nullptr ? own : "";
    if (name.size() == kDefault.size() && fncmp(name.data(), kDefault.data()) == 0) return preset;
  }
  return nullptr;
}

}  // namespace

void PresetLoading::add(PresetList& list, const FSRef& folder, PresetLimb& limb) {
  _folders.push_back({&list, folder, &limb});
}

// Finds one more item; false at the end.
bool PresetLoading::walkOn() {
  for (;;) {
    if (!_walk) {
      if (_walked == _folders.size()) return false;
      const FSRef& top = _folders[_walked++].ref;
      _walk.emplace(top);
      _ahead.push_back({true, {top, true, 0, _walk->listed()}});
      return true;
    }
    if (const auto item = _walk->next()) {
      if (!item->isFolder) _reading->add(item->ref);
      _ahead.push_back({false, *item});
      return true;
    }
    _walk.reset();
  }
}

void PresetLoading::walkAhead() {
  while (_ahead.size() < FileReading::kMostAhead && walkOn()) {
  }
}

void PresetLoading::discardAhead() {
  _ahead.clear();
  _walk.reset();
  _walked = _built;
  _reading.emplace(Preset::isWhole);
}

PresetLoading::Result PresetLoading::build() {
  const Folder& folder = _folders[_built++];
  walkAhead();
  const OSErr listed = _ahead.front().item.listed;
  _ahead.pop_front();
  Result result{listed, listed};
  Building building(*folder.list, *folder.limb);
  for (walkAhead(); !_ahead.empty() && !_ahead.front().isTop; walkAhead()) {
    const FolderWalk::Item item = _ahead.front().item;
    _ahead.pop_front();
    if (item.isFolder) {
      building.addFolder(item);
      result.status = item.listed;
    } else {
      const FileStart start = _reading->next();
      openIfOfThisKind(*folder.list, item.ref, start);
      if (start.opened == noErr) result.status = start.closed;
    }
  }
  return result;
}

bool makeSureOfDefault(PresetList& list) {
  Preset* found = findDefault(list);
  if (found == nullptr) found = openPassedDefault(list);
  if (found == nullptr) {
    Str255 name;
    C2PCopy(name, Preset::_default_preset_name);
    list.newPreset(name, true, false);
    // If that failed this is another preset, which becomes ROM with index 0, on purpose.
    found = list.presetAt(list.count() - 1);
    if (found == nullptr) return true;
  } else if (found->isROM() && found->index() == 0) {
    return false;
  }
  found->setIndex(0);
  found->setROM(true);
  found->writeOut();
  return true;
}

}  // namespace cairnset
