#include "tool/FilenameRepair.h"

#include <cstring>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/FileNameRules.h"
#include "host/Process.h"
#include "host/ReportText.h"
#include "presets/PresetManager.h"
#include "tool/LeafIteration.h"
#include "tool/ReferrerIndex.h"
#include "tool/Renames.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

enum : std::size_t { kVelocityMaps, kEffects, kPrograms, kSessions };

// One kind's renaming: what it is called, and by whom and how it is named.
struct Renaming {
  PresetList* list;
  const char* kindName;
  PresetList* referrers;
  const PresetReference* reference;  // null where nobody names it
  const char* referrerKindName;
};

void appendQuoted(std::string& report, const char* name, const char* after) {
  report += '"';
  appendHeldName(report, std::cout, name);
  report.append(1, '"').append(after);
}

// Finds what is to be done for one kind, and tells of it.
std::vector<Rename> plan(const Renaming& renaming, std::string& report) {
  std::vector<Rename> renames;
  std::optional<ReferrerIndex> index;
  forEachPreset(renaming.list, [&](Preset& preset) {
    const char* name = preset.getTreeItemName();
    const char* corrected = isIllegalFilename(name);
    if (corrected == nullptr) return;
    report.append("renaming ").append(renaming.kindName).append(" ");
    appendQuoted(report, name, " to ");
    appendQuoted(report, corrected, "\n");
    Rename& rename = renames.emplace_back(Rename{&preset, corrected, {}, renaming.reference, {}});
    if (renaming.reference == nullptr) return;
    if (!index) index.emplace(renaming.referrers, *renaming.reference);
    // A corrected name is never again one to be corrected: none of these is asked for twice.
    rename.referrers = index->takeReferrersOf(name);
    for (const Preset* referrer : rename.referrers) {
      report.append("\t relinking ").append(renaming.referrerKindName).append(" ");
      appendQuoted(report, referrer->getTreeItemName(), "\n");
      rename.told.push_back(report.size());
    }
  });
  return renames;
}

// The report, with each failure after the line that it belongs to.
void print(std::string_view report, const Failures& failures) {
  std::size_t printed = 0;
  for (const auto& [at, text] : failures) {
    writeText(std::cout, report.substr(printed, at - printed));
    writeText(std::cerr, text);
    printed = at;
  }
  writeText(std::cout, report.substr(printed));
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
  const Renaming renamings[] = {
      {_v, "velmap", _s, &kSessionVelocityMapReference, "session"},
      {_e, "effect", _p, &kProgramEffectsReference, "program"},
      {_p, "program", _s, &kSessionProgramReference, "session"},
      {_s, "session", nullptr, nullptr, nullptr},
  };
  std::string report;
  std::vector<Rename> renames[std::size(renamings)];
  for (std::size_t kind = 0; kind < std::size(renamings); ++kind)
    renames[kind] = plan(renamings[kind], report);
  // What names a kind is rewritten before it is itself renamed. The sessions, which name
  // two kinds, are rewritten in one go.
  Failures failures;
  for (const std::vector<std::size_t>& kinds :
       {std::vector<std::size_t>{kEffects}, {kVelocityMaps, kPrograms}, {kSessions}}) {
    std::vector<Rename*> together;
    for (const std::size_t kind : kinds) {
      for (Rename& rename : renames[kind])
        together.push_back(&rename);
    }
    renameAll(together, failures);
  }
  print(report, failures);
  std::cout << "Fixing all preset file names has finished.\n";
  return failures.empty() ? kSuccess : kReferencesNotWritten;
}

}  // namespace cairnset
