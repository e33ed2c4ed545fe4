#include "presets/BrowserSorting.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/files/FileManager.h"
#include "host/terminal/Process.h"
#include "host/text/PascalStrings.h"
#include "params/Keysets.h"
#include "presets/Findings.h"
#include "presets/PresetListOfKind.h"

namespace cairnset {

namespace {

constexpr const char* kFactory = "Factory";
constexpr OSStatus kMoved = 1;  // what a successful move returns

OSStatus moveTo(PresetList& list, Preset& preset, const FSRef& folder, bool replace) {
  const FSRef from = preset.fileRef();
  const Preset::Moved moved = preset.move(folder, replace);
  if (moved.replaced != FSRef())
    list.addFinding({.sort = FindingSort::kReplaced, .place = moved.replaced, .from = from});
  return moved.result;
}

void addNotMoved(PresetList& list, const Preset& preset, const char* folder, OSStatus why) {
  FSRef root;
  list.getRootFSSpec(root);
  list.addFinding({.sort = FindingSort::kNotMoved,
                   .place = root,
                   .result = static_cast<OSErr>(why),
                   .name = folder,
                   .from = preset.fileRef()});
}

}  // namespace

const char* effectsFolderFor(std::int32_t index) {
  struct Range {
    std::int32_t first, last;
    const char* folder;
  };
  // Indexes between these ranges belong in "Factory", on purpose.
  static constexpr Range kRanges[] = {
      {1, 19, "Halls"},       {20, 29, "Small Rooms"},  {30, 59, "EQ Timbres"},
      {100, 129, "Choruses"}, {180, 199, "Special FX"},
  };
  const std::int32_t remainder = index % 1000;  // negative for a negative index
  for (const Range& range : kRanges) {
    if (remainder >= range.first && remainder <= range.last) return range.folder;
  }
  return kFactory;
}

const char* programFolderFor(std::int32_t keyset) {
  static constexpr const char* kFolders[] = {
      "Synth",         "Concerto",        "Nordic D",       "Salon 7ft", "Alpine 10ft",
      "Urban Upright", "Antique Upright", "Saloon Upright", "Pin Piano",
  };
  // An unknown keyset also has instrument 0, but is not a synth.
  if (findKeysetNameWithID(keyset) == nullptr) return kFactory;
  const unsigned long instrument = findInstrumentIDWithKeysetID(keyset);
  return instrument < sizeof kFolders / sizeof *kFolders ? kFolders[instrument] : kFactory;
}

namespace {

const char* nameOf(const Preset* preset) {
  const char* name = preset->getTreeItemName();
  return name != nullptr ? name : "";
}

bool isNamedDefault(const Preset* preset) {
  return fncmp(nameOf(preset), Preset::_default_preset_name) == 0;
}

// The second names of files whose own names a repair was correcting when it was stopped
// (presets/Renames.h), each with the preset of the first name.
std::map<const Preset*, const Preset*> secondNames(const std::vector<Preset*>& presets) {
  std::vector<std::pair<std::string, const Preset*>> corrected;
  for (const Preset* preset : presets) {
    std::string name = nameOf(preset);
    RemoveAllIllegalFilenameCharsInPlace(name.data());
    name.resize(std::strlen(name.c_str()));
    if (name != nameOf(preset)) corrected.emplace_back(std::move(name), preset);
  }
  std::map<const Preset*, const Preset*> found;
  if (corrected.empty()) return found;
  std::sort(corrected.begin(), corrected.end());
  for (const Preset* preset : presets) {
    const std::string_view name = nameOf(preset);
    auto first = std::lower_bound(
        corrected.begin(), corrected.end(), name,
        [](const auto& entry, std::string_view wanted) { return entry.first < wanted; });
    for (; first != corrected.end() && first->first == name; ++first) {
      if (!areTwoItems(first->second->fileRef(), preset->fileRef()))
        found.try_emplace(preset, first->second);
    }
  }
  return found;
}

}  // namespace

OSStatus sortLoosePresets(PresetList& list, const char* (*romFolder)(const Preset&)) {
  FSRef root, user;
  list.getRootFSSpec(root);
  list.getUserFSSpec(user);
  OSStatus status = noErr;
  std::map<std::string_view, FSRef> found;
  std::vector<Preset*> moves;
  for (TreeLeaf* leaf : list.leaves().entriesAs<TreeLeaf>())
    moves.push_back(static_cast<Preset*>(leaf));
  // A load makes the first preset ROM that is called "Default", case ignored. Move it after the
  // others of these names, its neighbours: then a stop in between makes no other one the first.
  const auto firstDefault = std::find_if(moves.begin(), moves.end(), isNamedDefault);
  const auto end = std::find_if_not(firstDefault, moves.end(), isNamedDefault);
  if (firstDefault != end) std::rotate(firstDefault, firstDefault + 1, end);
  // A file's second name follows its first, which may have to stay: the two must stay together.
  const auto seconds = secondNames(moves);
  std::stable_partition(moves.begin(), moves.end(),
                        [&seconds](const Preset* preset) { return !seconds.contains(preset); });
  for (Preset* const move : moves) {
    Preset& preset = *move;
    if (preset.isDefault()) continue;
    const auto second = seconds.find(move);
    if (second != seconds.end() && second->second->getParentFolderID() == root.node) continue;
    const HeldSignals held;  // one file is moved whole or not at all
    if (list.whyNothingMade() != noErr) {
      addNotMoved(list, preset, "User", status = list.whyNothingMade());
      continue;
    }
    if (!preset.isROM()) {
      status = moveTo(list, preset, user, false);
      if (status != kMoved) addNotMoved(list, preset, "User", status);
      continue;
    }
    // Equivalent to a look-up for each preset. Only a successful move proves that the folder
    // exists: its name may belong to a file that this sort moves away.
    FSRef& folder = found[romFolder(preset)];
    const bool wasFound = folder != FSRef();
    if (wasFound) status = moveTo(list, preset, folder, true);
    if (!wasFound || status != kMoved) {
      status = PresetList::findFolder(root, romFolder(preset), true, folder);
      if (status == noErr) status = moveTo(list, preset, folder, true);
      if (status != kMoved) {
        addNotMoved(list, preset, romFolder(preset), status);
        folder = {};
      }
    }
  }
  return status;
}

OSStatus VelocityMapPresetList::sortForBrowser() {
  return sortLoosePresets(*this, [](const Preset&) { return kFactory; });
}
OSStatus EffectsPresetList::sortForBrowser() {
  return sortLoosePresets(*this,
                          [](const Preset& preset) { return effectsFolderFor(preset.index()); });
}
OSStatus ProgramPresetList::sortForBrowser() {
  return sortLoosePresets(*this, [](const Preset& preset) {
    return programFolderFor(static_cast<const ProgramPreset&>(preset).fields.pianoKeyset);
  });
}

}  // namespace cairnset
