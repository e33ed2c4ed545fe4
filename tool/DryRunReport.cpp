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
  const std::string line = std::string(wordsFor(change.kind)) + ' ';
  if (change.kind == FileChange::Kind::kReplace)
    return line + change.newPath + " by " + change.path;
  return line + change.path + (change.newPath.empty() ? "" : " to " + change.newPath);
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
