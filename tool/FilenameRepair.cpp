#include "tool/FilenameRepair.h"

#include <cstring>
#include <iostream>
#include <optional>
#include <string>

#include "host/FileNameRules.h"
#include "host/PascalStrings.h"
#include "host/Process.h"
#include "host/ReportText.h"
#include "presets/PresetManager.h"
#include "tool/LeafIteration.h"
#include "tool/ReferrerIndex.h"
#include "tool/Session.h"
#include "tool/WriteFailures.h"

namespace cairnset {

namespace {

// One kind's renaming: what it is called, and by whom and how it is named.
struct Renaming {
  PresetList* list;
  const char* kindName;
  PresetList* referrers;
  const PresetReference* reference;  // null where nobody names it
  const char* referrerKindName;
};

void printQuoted(const char* before, const char* name, const char* after) {
  std::cout << before;
  writeHeldName(std::cout, name);
  std::cout << after;
}

// Answers whether all that named the preset could be written.
bool rename(Preset& preset, const char* corrected, const Renaming& renaming, ReferrerIndex* index) {
  const HeldSignals held(&std::cout);
  const std::string oldName = preset.getTreeItemName();
  std::cout << "renaming " << renaming.kindName;
  printQuoted(" \"", oldName.c_str(), "\" to ");
  printQuoted("\"", corrected, "\"\n");
  Str255 newName;
  C2PCopy(newName, corrected);
  // A rename that fails is not looked at, and the references are relinked all the same. Meant so:
  // it is how the tool has always behaved, and what was broken shows in -d.
  (void)preset.rename(newName);
  if (index == nullptr) return true;
  bool allWritten = true;
  for (Preset* referrer : index->relink(oldName, corrected)) {
    std::cout << "\t relinking " << renaming.referrerKindName;
    printQuoted(" \"", referrer->getTreeItemName(), "\"\n");
    allWritten = writeAndReport(*referrer) && allWritten;
  }
  return allWritten;
}

bool renameAll(const Renaming& renaming) {
  bool allWritten = true;
  std::optional<ReferrerIndex> index;
  forEachPreset(renaming.list, [&](Preset& preset) {
    const char* corrected = isIllegalFilename(preset.getTreeItemName());
    if (corrected == nullptr) return;
    if (!index && renaming.reference != nullptr) {
      index.emplace(renaming.referrers, *renaming.reference);
    }
    allWritten = rename(preset, corrected, renaming, index ? &*index : nullptr) && allWritten;
  });
  return allWritten;
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
  for (PresetList* list : {_v, _e, _p, _s}) {
    forEachPreset(list, [&status](Preset& preset) {
      const bool isIllegal = isIllegalFilename(preset.getTreeItemName()) != nullptr;
      if (isIllegal) status = kIncompatibleNames;
      std::cout << (isIllegal ? "[INCOMPATIBLE]  " : "    [ ok ]      ");
      preset.printTreeItemInfo(std::cout, 0);
      std::cout << '\n';
    });
  }
  return status;
}

int fixFilenames() {
  const OutlivesReader outlives(std::cout);
  const Renaming renamings[] = {
      {_v, "velmap", _s, &kSessionVelocityMapReference, "session"},
      {_e, "effect", _p, &kProgramEffectsReference, "program"},
      {_p, "program", _s, &kSessionProgramReference, "session"},
      {_s, "session", nullptr, nullptr, nullptr},
  };
  bool allWritten = true;
  for (const Renaming& renaming : renamings)
    allWritten = renameAll(renaming) && allWritten;
  std::cout << "Fixing all preset file names has finished.\n";
  return allWritten ? kSuccess : kReferencesNotWritten;
}

}  // namespace cairnset
