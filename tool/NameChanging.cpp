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

const char* reasonFor(Refusal refusal, bool isRename) {
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

void reportRefusal(const NameChange& change, Refusal refusal, const Preset* because) {
  std::cerr << "Cairnset: ";
  writeGivenText(std::cerr, textOf(change));
  std::cerr << ": " << reasonFor(refusal, change.referred == kAllKinds);
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
