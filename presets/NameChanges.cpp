#include "presets/NameChanges.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <set>

#include "host/files/FileManager.h"
#include "host/files/FileSystemHelpers.h"
#include "host/text/FileNameRules.h"
#include "host/text/MacRoman.h"
#include "host/text/NameConversions.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "presets/Namesakes.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "presets/Renames.h"

namespace cairnset {

namespace {

constexpr std::size_t kMostCharacters = PresetReference::kWidth - 1;

std::u16string unicodeNameOf(const FSRef& place) {
  HFSUniStr255 name;
  placeOf(place, nullptr, &name);
  // Clang 13 fails to link the constructor from a pointer and a length.
  return std::u16string().append(name.unicode, name.length);
}

FSRef folderOf(const FSRef& place) {
  FSRef folder;
  placeOf(place, &folder, nullptr);
  return folder;
}

// The item of this held name in the folder, if there is one.
std::optional<FSRef> itemIn(const FSRef& folder, const std::string& heldName) {
  HFSUniStr255 name;
  ConvertCStringToHFSUniStr(heldName.c_str(), &name);
  FSRef item;
  const OSErr result =
      FSMakeFSRefUnicode(&folder, name.length, name.unicode, kTextEncodingUnknown, &item);
  return result == noErr ? std::optional(item) : std::nullopt;
}

bool isLegal(const std::string& name) {
  std::string corrected = name;
  RemoveAllIllegalFilenameCharsInPlace(corrected.data());
  return std::strcmp(corrected.c_str(), name.c_str()) == 0 && name.find(':') == std::string::npos;
}

struct SplitPath {
  explicit SplitPath(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
      name = path;
    } else {
      folder = path.substr(0, slash + 1);
      name = path.substr(slash + 1);
    }
  }
  std::string folder;  // with the separator; empty for none
  std::string name;
};

// The library as the changes so far will leave it, and the checks against it.
class Planner {
 public:
  Planner(PresetManager& library, const std::vector<NameChange>& changes)
      : _library(library), _changes(changes) {
    for (const FSRef& folder : {library.presetsFolder(), library.itemsFolder()}) {
      char path[4096];
      if (convertFSRefToPath(&folder, path, sizeof path) == noErr)
        _starts.push_back(std::string(path) + '/');
    }
  }

  NameChangePlan plan() {
    forgetLeftovers();
    std::optional<std::size_t> made;
    bool isAllMade = true;
    for (std::size_t i = 0; i < _changes.size(); ++i) {
      const Refusal refusal = add(_changes[i]);
      if (refusal != Refusal::kNone) return {{}, refusal, i, _because};
      isAllMade = isAllMade && _plan.changes.back().isMade;
      if (_changes[i].referred == kAllKinds && _plan.changes.back().isMade && !made) made = i;
    }
    if (isAllMade && made) return {{}, Refusal::kNoPreset, *made, nullptr};
    return std::move(_plan);
  }

 private:
  Refusal add(const NameChange& change) {
    _because = nullptr;
    const auto newName = heldNameFromShownText(change.newName);
    if (change.newName.empty()) return Refusal::kNameEmpty;
    if (!newName) return Refusal::kNameNotHeld;
    if (newName->size() > kMostCharacters) return Refusal::kNameTooLong;
    return change.referred == kAllKinds ? addRename(change.what, *newName)
                                        : addRelink(change.referred, change.what, *newName);
  }

  Refusal addRename(const std::string& path, const std::string& newName) {
    if (!isLegal(newName)) return Refusal::kNameIllegal;
    const std::vector<Preset*> found = presetsAt(path);
    if (found.size() > 1) return Refusal::kSeveralPresets;
    if (found.empty()) return addMade(path, newName);
    Preset& preset = *found.front();
    PresetList& list = listOf(preset);
    const std::string oldName = nameOf(preset);
    if (preset.isDefault() || list.findPreset(Preset::_default_preset_name) == &preset)
      return Refusal::kIsDefault;
    if (newName == oldName) return Refusal::kNameUnchanged;
    _because = presetNamed(list, newName, &preset);
    if (_because != nullptr) return Refusal::kNameInKind;
    if (isTaken(preset, newName)) return Refusal::kNameInFolder;
    _because = _namesakes.try_emplace(&list, list).first->second.rename(preset, newName);
    if (_because != nullptr) return Refusal::kNamesakesSwap;

    PlannedChange planned{referenceTo(preset), &preset, oldName, newName};
    if (planned.reference != nullptr) {
      if (isReferrerDamaged(*planned.reference, oldName)) return Refusal::kReferrerDamaged;
      if (list.findPreset(newName.c_str()) == nullptr)
        planned.dangling = referrersTo(_library, *planned.reference, newName).size();
    }
    _plan.changes.push_back(planned);
    _newNames[&preset] = newName;
    return Refusal::kNone;
  }

  // A rename that an earlier run has completed, or of nothing.
  Refusal addMade(const std::string& path, const std::string& newName) {
    std::string volumeName;
    appendUtf8FromMacRoman(newName, volumeName);
    const SplitPath split(path);
    const std::vector<Preset*> found = presetsAt(split.folder + volumeName);
    if (split.name.empty() || found.size() != 1) return Refusal::kNoPreset;
    if (nameOf(*found.front()) != newName) return Refusal::kNoPreset;
    _plan.changes.push_back(
        {referenceTo(*found.front()), nullptr, heldNameFromVolumeName(split.name), newName, true});
    return Refusal::kNone;
  }

  Refusal addRelink(PresetKind kind, const std::string& what, const std::string& newName) {
    const auto oldName = heldNameFromShownText(what);
    if (!oldName) return Refusal::kNameNotHeld;
    const Preset* target = presetNamed(_library.listOf(kind), newName, nullptr);
    if (target == nullptr) return Refusal::kNoPreset;
    const PresetReference* reference = referenceTo(*target);
    if (isReferrerDamaged(*reference, *oldName)) return Refusal::kReferrerDamaged;
    const std::string exactName = nameOf(*target);
    const std::vector<Preset*> referrers = referrersTo(_library, *reference, *oldName);
    const bool isMade = std::all_of(referrers.begin(), referrers.end(), [&](Preset* referrer) {
      return reference->name(*referrer) == exactName;
    });
    _plan.changes.push_back({reference, nullptr, *oldName, exactName, isMade});
    return Refusal::kNone;
  }

  // --- The library as it will be ---

  PresetList& listOf(const Preset& preset) { return _library.listOf(preset.getPresetType()); }

  const char* nameOf(const Preset& preset) const {
    const auto renamed = _newNames.find(&preset);
    return renamed != _newNames.end() ? renamed->second.c_str() : preset.getTreeItemName();
  }

  template <typename Accepts>
  std::vector<Preset*> presetsWhere(const std::vector<PresetList*>& lists, Accepts accepts) const {
    std::vector<Preset*> found;
    for (const PresetList* list : lists) {
      for (Preset* preset : list->presets()) {
        if (preset != nullptr && accepts(*preset)) found.push_back(preset);
      }
    }
    return found;
  }

  // The first one of that name but `except`, or null; case is ignored.
  const Preset* presetNamed(PresetList& list, const std::string& name, const Preset* except) const {
    const std::vector<Preset*> found = presetsWhere({&list}, [&](const Preset& preset) {
      return &preset != except && fncmp(nameOf(preset), name.c_str()) == 0;
    });
    return found.empty() ? nullptr : found.front();
  }

  // Whether something has the name in the preset's folder, and will not have given it up by then.
  bool isTaken(const Preset& preset, const std::string& name) const {
    const std::optional<FSRef> item = itemIn(folderOf(preset.fileRef()), name);
    if (!item || !areTwoItems(*item, preset.fileRef())) return false;
    return std::none_of(_newNames.begin(), _newNames.end(), [&](const auto& renamed) {
      return !areTwoItems(*item, renamed.first->fileRef());
    });
  }

  bool isReferrerDamaged(const PresetReference& reference, const std::string& name) {
    for (const Preset* referrer : referrersTo(_library, reference, name)) {
      if (!referrer->isFileWhole()) return _because = referrer, true;
    }
    return false;
  }

  // A stopped run leaves a file with both names, and each was loaded as a preset.
  void forgetLeftovers() {
    std::set<Preset*> leftovers;
    for (const NameChange& change : _changes) {
      const auto newName = heldNameFromShownText(change.newName);
      const std::vector<Preset*> found = presetsAt(change.what);
      if (change.referred != kAllKinds || !newName || found.size() != 1) continue;
      const Preset& preset = *found.front();
      for (Preset* leftover : presetsWhere({&listOf(preset)}, [&](const Preset& other) {
             return &other != &preset && !other.isDefault() &&
                    other.getTreeItemName() == *newName &&
                    other.getParentFolderID() == preset.getParentFolderID() &&
                    isSameItem(other, preset);
           })) {
        leftovers.insert(leftover);
      }
    }
    for (Preset* leftover : leftovers)
      listOf(*leftover).forget(leftover);
  }

  static bool isSameItem(const Preset& a, const Preset& b) {
    return FSRefIsValid(a.fileRef()) == noErr && FSRefIsValid(b.fileRef()) == noErr &&
           !areTwoItems(a.fileRef(), b.fileRef());
  }

  // --- Paths ---

  // A path below "Presets" goes before the same path from the library's folder, as notes and dry
  // runs print it, and from the working directory; exact names before those that only look alike.
  std::vector<Preset*> presetsAt(const std::string& path) const {
    const SplitPath split(path);
    if (split.name.empty()) return {};
    std::vector<std::string> starts;
    if (path.front() != '/') starts = _starts;
    starts.emplace_back();
    for (const std::string& start : starts) {
      FSRef folder;
      if (FSPathMakeRef((start + split.folder + '.').c_str(), &folder, nullptr) != noErr) continue;
      const std::u16string name = unicodeFromVolumeName(split.name);
      const std::string heldName = heldNameFromVolumeName(split.name);
      auto found = presetsWhere(allLists(), [&](const Preset& preset) {
        if (preset.getParentFolderID() != folder.node) return false;
        return _newNames.contains(&preset) ? nameOf(preset) == heldName
                                           : unicodeNameOf(preset.fileRef()) == name;
      });
      if (!found.empty()) return found;
    }
    for (const std::string& start : starts) {
      FSRef file;
      if (FSPathMakeRef((start + path).c_str(), &file, nullptr) != noErr) continue;
      auto found = presetsWhere(allLists(), [&](const Preset& preset) {
        return preset.fileRef() == file && !_newNames.contains(&preset);
      });
      if (!found.empty()) return found;
    }
    const std::string shown = heldPath(path);
    return presetsWhere(allLists(),
                        [&](const Preset& preset) { return heldPathOf(preset) == shown; });
  }

  std::vector<PresetList*> allLists() const { return _library.listsOf(kAllKinds); }

  // Name by name: a name's ":" becomes "/", which then looks like a separator. So both the name of
  // a file and that of its preset lead to it.
  static std::string heldPath(const std::string& path) {
    std::string held;
    for (std::size_t start = 0; start <= path.size();) {
      const std::size_t end = std::min(path.find('/', start), path.size());
      appendHeldNameFromVolumeName(std::string_view(path).substr(start, end - start), held);
      if (end < path.size()) held += '/';
      start = end + 1;
    }
    return held;
  }

  std::string heldPathOf(const Preset& preset) const {
    std::string path = nameOf(preset);
    FSRef folder = folderOf(preset.fileRef());
    while (folder.node != 0 && folder != _library.presetsFolder()) {
      path.insert(0, heldNameFromUnicode(unicodeNameOf(folder)).append(1, '/'));
      folder = folderOf(folder);
    }
    return path;
  }

  PresetManager& _library;
  const std::vector<NameChange>& _changes;
  std::vector<std::string> _starts;  // where relative paths may start, with a separator at the end
  NameChangePlan _plan;
  std::map<const Preset*, std::string> _newNames;
  std::map<const PresetList*, Namesakes> _namesakes;
  const Preset* _because = nullptr;
};

}  // namespace

const char* wordsFor(Refusal refusal, bool isRename) {
  switch (refusal) {
    case Refusal::kNone:
      break;
    case Refusal::kNoPreset:
      return isRename ? "there is no such preset" : "there is no preset of the new name";
    case Refusal::kSeveralPresets:
      return "more than one preset is shown like this; give the path of the file";
    case Refusal::kIsDefault:
      return "the \"Default\" of a kind keeps its name";
    case Refusal::kNameEmpty:
      return "the new name is empty";
    case Refusal::kNameTooLong:
      return "the new name has more than 63 characters";
    case Refusal::kNameNotHeld:
      return "there is a character that the instrument does not have";
    case Refusal::kNameIllegal:
      return "Windows rejects the new name";
    case Refusal::kNameUnchanged:
      return "that is the name already";
    case Refusal::kNameInFolder:
      return "something else in the folder has the new name";
    case Refusal::kNameInKind:
      return "another preset of the kind has the new name";
    case Refusal::kNamesakesSwap:
      return "presets with equal indexes would change their order, and references would lead to "
             "another one of the same name";
    case Refusal::kReferrerDamaged:
      return "a preset that would have to be rewritten is damaged";
  }
  return "";
}

NameChangePlan planNameChanges(PresetManager& library, const std::vector<NameChange>& changes) {
  return Planner(library, changes).plan();
}

}  // namespace cairnset
