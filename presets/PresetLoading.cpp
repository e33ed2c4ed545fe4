#include "presets/PresetLoading.h"

#include <string_view>
#include <unordered_map>

#include "host/files/FileManager.h"
#include "host/files/FileSystemHelpers.h"
#include "host/text/PascalStrings.h"
#include "presets/Findings.h"
#include "presets/PresetList.h"

namespace cairnset {

namespace {

// A file of the list's kind is a preset, whatever its name.
bool isOfKind(const PresetList& list, const FileStart& start) {
  return Preset::kindOf(start.bytes) == static_cast<std::uint32_t>(list.getPresetType());
}

void addFailure(const PresetList& list, FindingSort sort, const FSRef& place, OSErr why) {
  list.addFinding({.sort = sort, .place = place, .result = why});
}

void addDamaged(const PresetList& list, const FSRef& file, const FileStart& start,
                const Preset* preset) {
  list.addFinding({.sort = FindingSort::kDamaged,
                   .place = file,
                   .name = preset != nullptr ? preset->getTreeItemName() : "",
                   .size = start.size,
                   .expectedSize = preset != nullptr ? preset->fileSize() : 0});
}

void passOver(const PresetList& list, const FSRef& file, const FileStart& start) {
  if (start.read != noErr) {
    addFailure(list, FindingSort::kFileNotRead, file, start.read);
  } else if (const auto kind = Preset::kindOf(start.bytes)) {
    list.addFinding({.sort = FindingSort::kOtherKind, .place = file, .fileKind = *kind});
  } else if (Preset::isCutBeforeKind(start.bytes)) {
    addDamaged(list, file, start, nullptr);
  }
}

// Links and files of other programs are no finding, and what is gone by now is none either. Which
// of these it is costs a second look at the file.
void passOverUnopened(const PresetList& list, const FSRef& file, OSErr why) {
  if (isAlias(&file)) return addFailure(list, FindingSort::kLinkNotFollowed, file, why);
  if (isNoFile(&file)) return;
  char buffer[FileStart::kMost];
  const FileStart start = readFileStart(file, fsRdPerm, buffer);
  if (start.opened != noErr) {
    addFailure(list, FindingSort::kFileNotOpened, file, why);
  } else if (isOfKind(list, start)) {
    addFailure(list, FindingSort::kFileNotWritable, file, why);
  } else {
    passOver(list, file, start);
  }
}

void buildPreset(PresetList& list, const FSRef& file, const FileStart& start) {
  if (start.opened != noErr) return passOverUnopened(list, file, start.opened);
  if (!isOfKind(list, start)) return passOver(list, file, start);
  const Preset* preset = list.openPreset(file, &start);
  if (preset != nullptr && !preset->isFileWhole()) addDamaged(list, file, start, preset);
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

struct PassedDefault {
  Preset* preset = nullptr;   // if it is one
  OSErr whyNotTaken = noErr;  // why a new one must not be written in its place
};

// The root folder's file "Default", if the load skipped it. It may be a preset that could not be
// opened or read at that moment: a new one would overwrite it. An empty file may be filled; an
// interrupted creation leaves one.
PassedDefault openPassedDefault(PresetList& list) {
  FSRef root, file;
  list.getRootFSSpec(root);
  if (PresetList::findFolder(root, Preset::_default_preset_name, false, file) != noErr) return {};
  if (!isRegularFile(&file)) return {nullptr, dupFNErr};
  char buffer[FileStart::kMost];
  const FileStart start = readFileStart(file, fsRdWrPerm, buffer);
  if (start.opened != noErr || start.read != noErr || start.bytes.empty()) return {};
  if (!isOfKind(list, start)) return {nullptr, dupFNErr};
  return {list.openPreset(file, &start)};
}

void makeDefault(PresetList& list, OSErr whyExistingKept) {
  Str255 name;
  C2PCopy(name, Preset::_default_preset_name);
  list.keepExisting(whyExistingKept);
  auto made = static_cast<OSErr>(list.newPreset(name, true, false));
  list.keepExisting(noErr);
  // If that failed the last one is another preset. It becomes ROM with index 0 all the same, on
  // purpose; but in memory only, since nobody wants that on the disk.
  Preset* last = list.presetAt(list.count() - 1);
  if (last != nullptr) {
    last->setIndex(0);
    last->setROM(true);
    if (made == noErr) {
      last->writeOut();
      made = last->status();
    } else {
      last->neverWrite(made);
    }
  }
  FSRef root;
  list.getRootFSSpec(root);
  if (made != noErr) addFailure(list, FindingSort::kDefaultNotMade, root, made);
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

// True for the file that a load would make.
bool isUsualDefault(const PresetList& list, const Preset& preset) {
  return std::string_view(preset.getTreeItemName()) == Preset::_default_preset_name &&
         preset.getParentFolderID() == list.getTreeItemID();
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
  if (listed != noErr) addFailure(*folder.list, FindingSort::kFolderNotListed, folder.ref, listed);
  Building building(*folder.list, *folder.limb);
  for (walkAhead(); !_ahead.empty() && !_ahead.front().isTop; walkAhead()) {
    const FolderWalk::Item item = _ahead.front().item;
    _ahead.pop_front();
    if (item.isFolder) {
      building.addFolder(item);
      if (item.listed != noErr)
        addFailure(*folder.list, FindingSort::kFolderNotListed, item.ref, item.listed);
      result.status = item.listed;
    } else {
      const FileStart start = _reading->next();
      buildPreset(*folder.list, item.ref, start);
      if (start.opened == noErr) result.status = start.closed;
    }
  }
  return result;
}

bool makeSureOfDefault(PresetList& list) {
  Preset* found = findDefault(list);
  if (found == nullptr) {
    const PassedDefault passed = openPassedDefault(list);
    found = passed.preset;
    if (found == nullptr) {
      makeDefault(list, passed.whyNotTaken);
      return true;
    }
  }
  if (found->isROM() && found->index() == 0) return false;
  found->setIndex(0);
  found->setROM(true);
  // What is not a whole preset stays as it is on the disk: it may be all that is left of one.
  if (!found->isFileWhole()) return false;
  // The load may have passed over the one that takes this part: leave another as it is.
  if (const Finding* passed = list.firstPassedOver();
      passed != nullptr && !isUsualDefault(list, *found))
    found->neverWrite(passed->result);
  found->writeOut();
  if (found->status() != noErr)
    addFailure(list, FindingSort::kDefaultNotWritten, found->fileRef(), found->status());
  return true;
}

}  // namespace cairnset
