#include "tool/FilenameRepair.h"

#include <cstring>
#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/files/FileSystemHelpers.h"
#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "host/text/FileNameRules.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "presets/Renames.h"
#include "tool/Notes.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

void appendQuoted(std::string& text, const std::string& name, const char* after) {
  text += '"';
  appendHeldName(text, std::cout, name);
  text.append(1, '"').append(after);
}

const char* kindName(const Preset& preset) {
  switch (preset.getPresetType()) {
    case kVelocityMapKind:
      return "velmap ";
    case kEffectsKind:
      return "effect ";
    case kProgramKind:
      return "program ";
    default:
      return "session ";
  }
}

// Says why old names are kept, if it is because of presets of this kind that were not loaded.
void reportPassedOver(PresetKind kind) {
  const std::size_t count = _pm->findings().passedOver(kind);
  const Finding* first = _pm->findings().firstPassedOver(kind);
  if (first == nullptr) return;
  char place[4096];
  if (convertFSRefToPath(&first->place, place, sizeof place) != noErr)
    getPlaceName(first->place, place, sizeof place);
  std::cerr << "### error " << first->result << " occurred while loading " << count
            << (count == 1 ? " file or folder of " : " files or folders of ")
            << (kind == kProgramKind ? "programs" : "sessions") << ", the first of them [";
  writeGivenText(std::cerr, place);
  std::cerr << "]; the old names of what may be used there are kept\n";
}

}  // namespace

const char* isIllegalFilename(const char* name) {
  static char corrected[256];
  char original[256] = "";
  std::strncpy(original, name, sizeof original - 1);
  std::memcpy(corrected, original, sizeof corrected);
  RemoveAllIllegalFilenameCharsInPlace(corrected);
  return std::strcmp(original, corrected) != 0 ? corrected : nullptr;
}

int checkFilenames() {
  int status = kSuccess;
  std::string line;
  for (PresetList* list : {_v, _e, _p, _s}) {
    forEachPreset(list, [&](Preset& preset) {
      const bool isIllegal = isIllegalFilename(preset.getTreeItemName()) != nullptr;
      if (isIllegal) status = kIncompatibleNames;
      line = isIllegal ? "[INCOMPATIBLE]  " : "    [ ok ]      ";
      preset.appendTreeItemInfo(line, std::cout);
      writeText(std::cout, line.append(1, '\n'));
    });
  }
  return status;
}

int fixFilenames() {
  const OutlivesReader outlives(std::cout);
  const HeldSignals held(&std::cout);
  std::vector<NewName> names;
  for (PresetList* list : {_v, _e, _p, _s}) {
    forEachPreset(list, [&names](Preset& preset) {
      const char* corrected = isIllegalFilename(preset.getTreeItemName());
      if (corrected != nullptr) names.push_back({&preset, corrected});
    });
  }
  int status = kSuccess;
  std::string text;
  std::set<PresetKind> needed;  // the kinds for which old names were kept
  std::vector<Renamed> renames;
  NoteLines notes;
  if (_pm != nullptr && !names.empty()) {
    std::vector<ReferenceTarget> before;
    if (areNotesWanted()) before = targetsBefore(*_pm, names);
    renames = renamePresets(*_pm, names);
    if (areNotesWanted()) notes = notesOfRepair(*_pm, renames, before);
  }
  for (const auto& [preset, oldName, newName, referrers, renamed, keepsOldName] : renames) {
    text.append("renaming ").append(kindName(*preset));
    appendQuoted(text, oldName, " to ");
    appendQuoted(text, newName, "\n");
    for (const Relinked& referrer : referrers) {
      text.append("\t relinking ").append(kindName(*referrer.preset));
      appendQuoted(text, referrer.name, "\n");
      const OSErr result = referrer.written != noErr ? referrer.written : referrer.flushed;
      if (result == noErr) continue;
      status = kReferencesNotWritten;
      writeText(std::cout, std::exchange(text, {}));
      reportFailure("writing", *referrer.preset, result, referrer.name.c_str());
    }
    if (renamed != noErr && !isNameRefused(renamed)) {
      status = kReferencesNotWritten;
      writeText(std::cout, std::exchange(text, {}));
      reportFailure("renaming", *preset, renamed, oldName.c_str());
    }
    if (keepsOldName) {
      status = kReferencesNotWritten;
      needed.insert(referenceTo(*preset)->from);
    }
  }
  writeText(std::cout, text);
  for (const PresetKind kind : needed)
    reportPassedOver(kind);
  std::cout << "Fixing all preset file names has finished.\n";
  writeNotes(notes);
  writeNotes(takeResultNotes());
  return status;
}

}  // namespace cairnset
