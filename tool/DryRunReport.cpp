#include "tool/DryRunReport.h"

#include <iostream>
#include <string>
#include <vector>

#include "host/files/ChangeRecord.h"
#include "host/files/DryRun.h"
#include "host/terminal/ReportText.h"
#include "presets/PresetManager.h"
#include "tool/Notes.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

std::string lineFor(const FileChange& change) {
  switch (change.kind) {
    case FileChange::Kind::kMakeFolder:
      return "make folder " + change.path;
    case FileChange::Kind::kMake:
      return "make " + change.path;
    case FileChange::Kind::kRename:
      return "rename " + change.path + " to " + change.newPath;
    case FileChange::Kind::kMove:
      return "move " + change.path + " to " + change.newPath;
    case FileChange::Kind::kReplace:
      return "replace " + change.newPath + " by " + change.path;
    case FileChange::Kind::kRewrite:
      return "rewrite " + change.path;
    case FileChange::Kind::kDelete:
      return "delete " + change.path;
  }
  return "";
}

}  // namespace

void listChanges(const ChangeRecord& record, const DryRun& dryRun) {
  const FSRef library = _pm != nullptr ? _pm->itemsFolder() : FSRef();
  const std::vector<FileChange> changes = record.changesIn(library);
  std::cout << "\nChanges that were not made:\n";
  for (const FileChange& change : changes) {
    writeGivenText(std::cout, lineFor(change));
    std::cout << '\n';
  }
  if (changes.empty()) std::cout << "none\n";
  if (dryRun.hasMetReadOnly()) {
    writeNotes(
        {"not all of this can be written; the dry run counts what can be read as if it could"});
  }
}

}  // namespace cairnset
