#include "tool/FilenameRepair.h"

#include <cstring>
#include <iostream>
#include <vector>

#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "host/text/FileNameRules.h"
#include "presets/PresetManager.h"
#include "presets/Renames.h"
#include "tool/Notes.h"
#include "tool/RenameReport.h"
#include "tool/Session.h"

namespace cairnset {

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
  std::vector<Renamed> renames;
  NoteLines notes;
  if (_pm != nullptr && !names.empty()) {
    std::vector<ReferenceTarget> before;
    if (areNotesWanted()) before = targetsBefore(*_pm, names);
    renames = renamePresets(*_pm, names);
    if (areNotesWanted()) notes = notesOfRepair(*_pm, renames, before);
  }
  RenameReport report(false);
  for (const Renamed& renamed : renames)
    report.add(renamed);
  const int status = report.end();
  std::cout << "Fixing all preset file names has finished.\n";
  writeNotes(notes);
  writeNotes(takeResultNotes());
  return status;
}

}  // namespace cairnset
