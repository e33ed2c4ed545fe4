#include "presets/BrowserSorting.h"

#include <map>
#include <string_view>

#include "host/terminal/Process.h"
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

OSStatus sortLoosePresets(PresetList& list, const char* (*romFolder)(const Preset&)) {
  FSRef root, user;
  list.getRootFSSpec(root);
  list.getUserFSSpec(user);
  OSStatus status = noErr;
  std::map<std::string_view, FSRef> found;
  for (TreeLeaf* leaf : list.leaves().entriesAs<TreeLeaf>()) {
    auto& preset = static_cast<Preset&>(*leaf);
    if (preset.isDefault()) continue;
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
