#include "tool/NameChanging.h"

#include <iostream>
#include <string>

#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "presets/Renames.h"
#include "tool/Notes.h"
#include "tool/RenameReport.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

std::string textOf(const NameChange& change) {
  if (change.referred == kAllKinds)
    return "--rename [" + change.what + "] --to [" + change.newName + ']';
  return std::string("--relink [") + kindWord(change.referred) + '/' + change.what + "] --to [" +
         change.newName + ']';
}

void reportRefusal(const NameChange& change, Refusal refusal, const Preset* because) {
  std::cerr << "Cairnset: ";
  writeGivenText(std::cerr, textOf(change));
  std::cerr << ": " << wordsFor(refusal, change.referred == kAllKinds);
  if (because != nullptr) {
    std::cerr << ": ";
    because->printTreeItemInfo(std::cerr, 0);
  }
  std::cerr << "; nothing was changed\n";
}

void make(const PlannedChange& change, RenameReport& report, NoteLines& notes) {
  if (change.preset != nullptr) {
    for (const Renamed& renamed :
         renamePresets(*_pm, {{change.preset, change.newName}}, Relinks::kLedToIt))
      report.add(renamed);
  } else {
    const auto relinked = relinkReferences(*_pm, *change.reference, change.oldName, change.newName);
    report.add(change.reference->to, change.oldName, change.newName, relinked);
    if (relinked.empty())
      notes.push_back(std::string("no reference to ") + kindWord(change.reference->to) + " \"" +
                      shownName(std::cerr, change.oldName) + "\" had to be changed");
  }
  if (change.dangling > 0)
    notes.push_back(std::to_string(change.dangling) +
                    (change.dangling == 1 ? " reference that led nowhere leads"
                                          : " references that led nowhere lead") +
                    " to the renamed " + kindWord(change.reference->to) + " \"" +
                    shownName(std::cerr, change.newName) + '"');
}

}  // namespace

int changeNames(const std::vector<NameChange>& changes) {
  const OutlivesReader outlives(std::cout);
  const HeldSignals held(&std::cout);
  const NameChangePlan plan = planNameChanges(*_pm, changes);
  if (plan.refusal != Refusal::kNone) {
    reportRefusal(changes[plan.refused], plan.refusal, plan.because);
    return kChangeRefused;
  }
  RenameReport report(true);
  NoteLines notes;
  std::size_t next = 0;
  for (; report.status() == kSuccess && next < changes.size(); ++next) {
    const bool isRename = changes[next].referred == kAllKinds;
    if (isRename && plan.changes[next].isMade) {
      notes.push_back(textOf(changes[next]) + " was made before");
    } else {
      make(plan.changes[next], report, notes);
    }
  }
  const int status = report.end();
  for (; next < changes.size(); ++next) {
    std::cerr << "### ";
    writeGivenText(std::cerr, textOf(changes[next]));
    std::cerr << " was not tried\n";
  }
  writeNotes(notes);
  writeNotes(takeResultNotes());
  return status;
}

}  // namespace cairnset
